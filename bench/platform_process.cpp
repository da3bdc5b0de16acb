// The bare process on the platform: its main loop, one of its message ports, one watched key, and an open database.
#include <message_port.h>
#include <service_app.h>
#include <sqlite3.h>
#include <vconf.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

void onMessage(int /*port*/, const char* /*application*/, const char* /*remotePort*/, bool /*trusted*/,
               bundle* /*message*/, void* /*data*/) {}

void onChange(keynode_t* /*node*/, void* /*data*/) {}

bool onCreate(void* /*data*/) {
    const std::unique_ptr<char, decltype(&std::free)> folder(app_get_data_path(), &std::free);
    sqlite3* database = nullptr;
    sqlite3_open((std::string(folder.get()) + "bare.db").c_str(), &database);
    sqlite3_exec(database, "select count(*) from sqlite_master", nullptr, nullptr, nullptr);
    vconf_notify_key_changed("db/setting/lock_type", onChange, nullptr);
    return message_port_register_local_port("port", onMessage, nullptr) > 0;
}

} // namespace

int main(int argc, char** argv) {
    service_app_lifecycle_callback_s callbacks{};
    callbacks.create = onCreate;
    return service_app_main(argc, argv, &callbacks, nullptr);
}
