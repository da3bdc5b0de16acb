#ifndef CONTRACT_BUNDLE_OWNER_H
#define CONTRACT_BUNDLE_OWNER_H

#include <memory>

#include <bundle.h>

namespace contract {

struct BundleFree {
    void operator()(bundle* b) const { bundle_free(b); }
};

using BundleOwner = std::unique_ptr<bundle, BundleFree>;

} // namespace contract

#endif
