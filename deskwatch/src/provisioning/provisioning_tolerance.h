#ifndef DESKWATCH_PROVISIONING_TOLERANCE_H
#define DESKWATCH_PROVISIONING_TOLERANCE_H

#include <string>
#include <vector>

#include "provisioning/provisioning_document.h"

namespace deskwatch {

/// Elements as a client takes them, and what it did not take literally.
struct ToleratedElements {
    std::vector<ProvisioningElement> elements;
    std::vector<std::string> remarks;
};

/// Takes a server's elements as a client has to: no value fails the whole policy. Of an element that comes twice the
/// first one counts. A number beyond the legal ones becomes the nearest of them; what is not a number counts as absent.
ToleratedElements tolerated(const std::vector<ProvisioningElement>& elements);

} // namespace deskwatch

#endif
