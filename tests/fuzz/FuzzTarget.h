// The entry points every fuzz target defines: libFuzzer's, and a set-up run once before the
// first input (a Qt application, the C locale).
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
