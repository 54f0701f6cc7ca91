// Export macro of the BXQExtend plug-in: only what the host calls carries it.
#pragma once

#if defined(BXQEXTEND_LIBRARY)
#define BXQEXTEND_EXPORT __attribute__((visibility("default")))
#else
#define BXQEXTEND_EXPORT
#endif
