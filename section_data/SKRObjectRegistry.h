// The process-wide object registry: data-side services found by name and group.
// The registry owns nothing; it never creates, copies or destroys the objects it lists.
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <string>

namespace skr {
namespace util {

// Adds the entry under name + group (plain concatenation). False, storing nothing, when the
// key is taken. A null object is accepted.
BXQEXTEND_EXPORT bool RegisterObject(const std::string& name, void* object, const std::string& group);
// The stored pointer, or null when the key is absent.
BXQEXTEND_EXPORT void* FetchObject(const std::string& name, const std::string& group);
// Forgets the entry; false when the key was absent. The object is not destroyed.
BXQEXTEND_EXPORT bool UnRegisterObject(const std::string& name, const std::string& group);

// Stateless handle of the registry; the entries live in static storage.
class BXQEXTEND_EXPORT Repository {
public:
    Repository& operator=(const Repository&) = default;
    Repository& operator=(Repository&&) = default;
};

}  // namespace util
}  // namespace skr
