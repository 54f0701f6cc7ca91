// The typed layer over the object registry: one registry key per service type, the empty group.
#pragma once

#include "section_data/SKRObjectRegistry.h"

namespace skr {
namespace util {

// Each service type specialises this with its fixed key, the class name as the host spells it
// ("class skr::section::SectionRepository"). The keys are literals because host code fetches
// the same services by the same strings.
template <typename T>
struct RegistryKey;

template <typename T>
bool RegisterInstance(T* object) {
    return RegisterObject(RegistryKey<T>::name(), object, std::string());
}

template <typename T>
T* FetchInstance() {
    // Asked per member and per keystroke: the key is made once.
    static const std::string name = RegistryKey<T>::name();
    static const std::string noGroup;
    return static_cast<T*>(FetchObject(name, noGroup));
}

// With destroy, the registered object (if any) is deleted before it is forgotten.
template <typename T>
bool UnRegisterInstance(bool destroy) {
    if (destroy) delete FetchInstance<T>();
    return UnRegisterObject(RegistryKey<T>::name(), std::string());
}

}  // namespace util
}  // namespace skr
