// Export macro of the platform stand-in library.
#pragma once

#if defined(BXQPLATFORM_LIBRARY)
#define BXQPLATFORM_EXPORT __attribute__((visibility("default")))
#else
#define BXQPLATFORM_EXPORT
#endif
