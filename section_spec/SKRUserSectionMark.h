// The mark that ends the name of a user's own hot-rolled section ("Z270*80*8*3(ZDY)"): the parser
// recognises it, the stores append it, the dialogs show it.
#pragma once

#include <QString>

namespace skr {
namespace section {

inline QString userSectionMark() { return QStringLiteral("(ZDY)"); }

}  // namespace section
}  // namespace skr
