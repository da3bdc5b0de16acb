#ifndef CONTRACT_BUNDLE_OWNER_H
#define CONTRACT_BUNDLE_OWNER_H

#include <bundle.h>

#include <memory>

namespace contract {

struct BundleFree {
    void operator()(bundle* b) const { bundle_free(b); }
};

using BundleOwner = std::unique_ptr<bundle, BundleFree>;

} // namespace contract

#endif
