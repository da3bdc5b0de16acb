#ifndef TESK_HOST_BUS_H
#define TESK_HOST_BUS_H

/// Where the processes of one device find each other, and what their environment tells them. Shared by the host
/// platform and by the tools that boot a device.
namespace host_bus {

/// Environment: the application id that a process runs under.
inline constexpr char appIdVariable[] = "TESK_APP_ID";

/// Environment: the device's folder, an absolute path.
inline constexpr char deviceVariable[] = "TESK_DEVICE";

/// Environment: set where a process that ends need not wait for the applications that it has asked to start, and which
/// may miss its requests then.
inline constexpr char startsForgottenVariable[] = "TESK_FORGET_STARTS";

/// The object of every application: tesk.host.Application, and tesk.host.MessagePort.
inline constexpr char applicationPath[] = "/tesk/host/application";

/// The object that tesk.host.System signals come from.
inline constexpr char systemPath[] = "/tesk/host/system";

/// Settings: the folder of the shared keys.
inline constexpr char sharedKeysPath[] = "/vconf/";

/// Settings: the folder of the marks of the shared keys, each at the key's own path below it. Whoever writes a key
/// gives its mark another text in the same change, which tells those who watch the key.
inline constexpr char keyMarksPath[] = "/vconf/written/";

} // namespace host_bus

#endif
