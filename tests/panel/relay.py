"""A relay between browser and panel that can be cut and healed; the names that the browser says stay right."""

import contextlib
import socket
import threading


class Relay:
    def __init__(self):
        self.target = 0
        self.is_cut = False
        self.sockets = []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        with contextlib.suppress(OSError):
            while True:
                near, _ = self.listener.accept()
                if self.is_cut:
                    near.close()
                    continue
                far = socket.create_connection(("127.0.0.1", self.target))
                self.sockets += [near, far]
                for source, sink in [(near, far), (far, near)]:
                    threading.Thread(target=self.pass_on, args=(source, sink), daemon=True).start()

    @staticmethod
    def pass_on(source, sink):
        with contextlib.suppress(OSError):
            while data := source.recv(65536):
                sink.sendall(data)
        for end in (source, sink):
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)

    def cut(self):
        self.is_cut = True
        for end in self.sockets:
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)

    def heal(self):
        self.is_cut = False

    def close(self):
        self.listener.close()
        self.cut()
