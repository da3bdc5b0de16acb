#!/usr/bin/python3
"""A mail application's part in enforcing policies, for a watch on the desk, without the platform's library.

It does what mail_client.c does, over the bus of the watch. The watch starts it: deskwatch boot DIR --mail mail_client.py.
Launch it with the extra data "req" and "msg" of a request; it tells on standard error what it does. docs/client.md explains
each step. Needs python3-gi.
"""
import collections
import os
import sys

from gi.repository import Gio, GLib

SERVICE = "com.velmor.tesk-agent"
PORT = "eas-itpolicy-port"
OBJECT = "/tesk/host/application"
PORT_NAME = "port_" + PORT.replace("-", "_2d")  # as a port's bus name has it: an odd byte in hexadecimal
PAUSE_MS, MOST_TRIES = 100, 100  # ten seconds

# What every application of a watch offers on its bus.
INTERFACES = Gio.DBusNodeInfo.new_for_xml("""
<node>
  <interface name="tesk.host.Application">
    <method name="Launch">
      <arg name="caller" type="s" direction="in"/>
      <arg name="extra_data" type="a(ayay)" direction="in"/>
      <arg name="reply_wanted" type="b" direction="in"/>
      <arg name="result" type="i" direction="out"/>
      <arg name="reply_data" type="a(ayay)" direction="out"/>
    </method>
    <method name="Settle"><arg name="launched" type="as" direction="out"/></method>
  </interface>
  <interface name="tesk.host.MessagePort">
    <method name="Send">
      <arg name="port" type="s" direction="in"/>
      <arg name="sender" type="s" direction="in"/>
      <arg name="message" type="a(ayay)" direction="in"/>
    </method>
  </interface>
</node>""")


def pairs(entries):
    """Entries as the bus carries them: bytes with a null byte at the end, so that a text need not be UTF-8."""
    return [(key.encode() + b"\0", value.encode() + b"\0") for key, value in entries.items()]


def text(array):
    return bytes(array).split(b"\0")[0].decode(errors="replace")


def entries(pairs):
    return {text(key): text(value) for key, value in pairs}


def say(words):
    print("mail_client:", words, file=sys.stderr, flush=True)


class MailClient:
    def __init__(self, connection, own_id):
        self.connection, self.own_id = connection, own_id
        self.outbox = collections.deque()  # requests in the order in which they are to arrive
        self.tries = 0
        for interface in INTERFACES.interfaces:
            connection.register_object(OBJECT, interface, self.on_call, None, None)

    def on_call(self, _connection, _sender, _path, _interface, method, arguments, invocation):
        arguments = arguments.unpack()
        if method == "Launch":
            self.on_launch(entries(arguments[1]))
            invocation.return_value(GLib.Variant("(ia(ayay))", (0, [])))
        elif method == "Settle":
            invocation.return_value(GLib.Variant("(as)", ([],)))
        elif arguments[0] == PORT:
            say(f"{arguments[1]} asks: {entries(arguments[2]).get('req')}")
            invocation.return_value(None)
        else:
            invocation.return_dbus_error("tesk.host.Error.PortNotFound", "no such port is open")

    def on_launch(self, extra_data):
        if "req" in extra_data:  # else somebody opens the application
            self.outbox.append(extra_data)
            if len(self.outbox) == 1:
                self.launch_service()

    def call(self, interface, method, arguments, done):
        # A launch starts the service; a message goes to a port that is open and starts nothing.
        flags = Gio.DBusCallFlags.NONE if method == "Launch" else Gio.DBusCallFlags.NO_AUTO_START
        self.connection.call(SERVICE, OBJECT, interface, method, arguments, None, flags, -1, None, done)

    def launch_service(self):
        """Any launch request starts the service, or gives a running one ten more seconds. The answer comes when it has taken
        the request: its port is open by then."""
        arguments = GLib.Variant("(sa(ayay)b)", (self.own_id, [], False))
        self.call("tesk.host.Application", "Launch", arguments, lambda *_: self.send_first())

    def send_first(self):
        request = {"req": self.outbox[0]["req"], "msg": self.outbox[0].get("msg", "")}
        arguments = GLib.Variant("(ssa(ayay))", (PORT, self.own_id, pairs(request)))
        self.call("tesk.host.MessagePort", "Send", arguments, self.on_sent)

    def on_sent(self, connection, result):
        try:
            connection.call_finish(result)
            outcome = "sent"
        except GLib.Error as error:
            self.tries += 1
            is_final = Gio.DBusError.get_remote_error(error) == "tesk.host.Error.MessageTooLong"
            if self.tries < MOST_TRIES and not is_final:  # the service ended before it read the request: launch it and send again
                GLib.timeout_add(PAUSE_MS, self.launch_service)
                return
            outcome = f"not sent: {error.message}"
        say(f"{self.outbox.popleft()['req']}: {outcome}")
        self.tries = 0
        if self.outbox:
            self.launch_service()


def main():
    own_id = os.environ.get("TESK_APP_ID")
    if own_id is None:
        sys.exit("mail_client: a watch starts this program: deskwatch boot DIR --mail mail_client.py")
    loop = GLib.MainLoop()
    connection = Gio.bus_get_sync(Gio.BusType.SESSION)
    connection.connect("closed", lambda *_: loop.quit())  # the watch is switched off
    client = MailClient(connection, own_id)
    for name in f"{own_id}.{PORT_NAME}", own_id:  # who launches it finds the port open
        Gio.bus_own_name_on_connection(connection, name, Gio.BusNameOwnerFlags.NONE, None, lambda *_: loop.quit())
    loop.run()
    return client


if __name__ == "__main__":
    main()
