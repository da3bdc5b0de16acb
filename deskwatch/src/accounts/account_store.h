#ifndef DESKWATCH_ACCOUNT_STORE_H
#define DESKWATCH_ACCOUNT_STORE_H

#include <filesystem>
#include <vector>

#include "accounts/mail_account.h"
#include "device/device_layout.h"
#include "device/file_descriptor.h"

namespace deskwatch {

/// The accounts of a watch's mail application, each in a file among its data.
class AccountStore {
public:
    explicit AccountStore(const DeviceLayout& layout);

    /// The numbers of the accounts, in order.
    std::vector<int> ids() const;

    /// Throws std::runtime_error with the file when there is no such account or it cannot be read.
    MailAccount read(int id) const;

    /// Writes an account. When that fails, the old state stays and std::runtime_error is thrown.
    void write(const MailAccount& account) const;

    /// Forgets an account; one that is not there is forgotten already.
    void remove(int id) const;

    /// Keeps others from a handshake of an account as long as the result lives. Throws std::runtime_error when
    /// somebody else is at it.
    FileDescriptor lock(int id) const;

private:
    std::filesystem::path fileOf(int id) const;

    std::filesystem::path folder_;
};

} // namespace deskwatch

#endif
