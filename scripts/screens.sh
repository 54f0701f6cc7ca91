#!/usr/bin/env bash
# Renders every state of the section and face-steel dialogs in both languages (Chinese, the
# default, and English as `--lang en` gives it) under Xvfb, with the section pictures and type
# list thumbnails, into one folder of PNGs for review after any change:
#
#   scripts/screens.sh [OUTPUT_DIR]        (default: build/screens-review)
#
#   OUTPUT_DIR/zh/        every dialog state in Chinese (the screens tests and the type-by-type run)
#   OUTPUT_DIR/en/        the same states in English
#   OUTPUT_DIR/pictures/  the dimensioned section pictures, and thumbs/ the type list's thumbnails
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
out="$(realpath -m "${1:-$root/build/screens-review}")"
cd "$root"
cmake --preset default >/dev/null
cmake --build --preset default

if ! command -v xvfb-run >/dev/null; then
    echo "screens.sh: xvfb-run is missing (apt-get install xvfb)" >&2
    exit 1
fi
rm -rf "$out"
mkdir -p "$out/zh" "$out/en" "$out/pictures"

# The screens suites save into build/screens; the English states among them end in _en.
rm -rf build/screens
ctest --preset default -L screens --output-on-failure
for png in build/screens/*.png; do
    case "$png" in
        *_en.png) cp "$png" "$out/en/" ;;
        *) cp "$png" "$out/zh/" ;;
    esac
done

# Every type of the section dialog chosen in turn, the code table and the face-steel dialog, in
# each language.
for lang in zh en; do
    setting=""
    [ "$lang" = en ] && setting=en
    xvfb-run -a -s "-screen 0 1400x1000x24" \
        env QT_QPA_PLATFORM=xcb BXQ_SCREENS_DIR="$out/$lang" BXQ_SCREENS_LANG="$setting" \
        build/bin/test_dialog_screens --gtest_brief=1 --gtest_filter="DialogScreens.*"
done

cp -r build/resources/images/SKRSectionPoly/. "$out/pictures/"
rm -f "$out/pictures/"*.qrc
echo "screens.sh: $(find "$out" -name '*.png' -o -name '*.jpg' | wc -l) pictures in $out"
