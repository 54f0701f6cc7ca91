// CRef: one counted reference to a platform object that is released rather than deleted
// (records, bodies), given back however the scope holding it ends.
#pragma once

#include <memory>

namespace ndp {

struct CReleaser {
    template <class T>
    void operator()(T* object) const {
        if (object) object->Release();
    }
};

template <class T>
using CRef = std::unique_ptr<T, CReleaser>;

}  // namespace ndp
