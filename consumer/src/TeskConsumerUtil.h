#ifndef TESK_CONSUMER_UTIL_H
#define TESK_CONSUMER_UTIL_H

/// Starts the companion applications when the wearer has to act, since the service shows nothing of its own.
namespace TeskConsumerUtil {

/// Whether the home screen's first-use tutorial is over. A state that cannot be read counts as over.
bool getIsTutorialFinished();

/// Asks for a stronger lock with the popup; its answer is handled here. Returns 0 when the request was sent, else -1.
int launchPopup();

/// Closes the popup. Returns 0 when the request was sent, else -1.
int exitPopup();

/// Asks for the encryption of the device. Returns 0 when the request was sent, else -1.
int launchOdePopup();

/// Makes the encryption menu of the settings available. Returns 0 when the request was sent, else -1.
int enableOdeSetting();

/// Opens the lock-screen settings. Returns 0 when the request was sent, else -1.
int __enforcePassword();

/// Hands control back to the mail application. Returns whether the request was sent.
bool launchQuillonConsumer();

/// The id of a user of this device, or -1 when there is none of that name.
int getUserId(const char* name);

} // namespace TeskConsumerUtil

#endif
