// The least process that waits for work: a main loop, a bus name and an open database.
#include <gio/gio.h>
#include <glib-unix.h>
#include <sqlite3.h>

#include <csignal>
#include <iostream>

namespace {

gboolean quit(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
}

} // namespace

int main(int argc, char** argv) {
    constexpr int wantedArguments = 3;
    if (argc != wantedArguments) {
        std::cerr << "usage: bench-bare-process BUS-NAME DATABASE\n";
        return 2;
    }
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    g_unix_signal_add(SIGTERM, quit, loop);

    sqlite3* database = nullptr;
    sqlite3_open(argv[2], &database);
    sqlite3_exec(database, "select count(*) from sqlite_master", nullptr, nullptr, nullptr);
    const guint name = g_bus_own_name(G_BUS_TYPE_SESSION, argv[1], G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nullptr,
                                      nullptr, nullptr, nullptr);
    g_main_loop_run(loop);

    g_bus_unown_name(name);
    sqlite3_close(database);
    g_main_loop_unref(loop);
    return 0;
}
