<?php
/**
 * A small site around Horde's ActiveSync library, for PHP's built-in web server: users and their policies are in a file,
 * the state of devices in a database. There is no mail. REAL_SERVER is the folder of both.
 */

error_reporting(E_ALL & ~E_DEPRECATED & ~E_NOTICE & ~E_WARNING); // the library is older than this PHP
ini_set('display_errors', '0');
ini_set('log_errors', '1');
set_exception_handler(function ($e) { error_log((string) $e); http_response_code(500); });
require_once 'Horde/Autoloader/Default.php';
date_default_timezone_set('UTC');

const FOLDER_VARIABLE = 'REAL_SERVER';

/** The users: name => ['password' => ..., 'policy' => [element => value] or null] */
function users(): array
{
    return json_decode(file_get_contents(getenv(FOLDER_VARIABLE) . '/users.json'), true);
}

function deviceStates(): Horde_ActiveSync_State_Sql
{
    $database = new Horde_Db_Adapter_Pdo_Sqlite(['dbname' => getenv(FOLDER_VARIABLE) . '/devices.sqlite']);
    $states = new Horde_ActiveSync_State_Sql(['db' => $database]);
    $states->setLogger(new Horde_Log_Logger(new Horde_Log_Handler_Null()));
    return $states;
}

/** The library's own driver for tests, with users and policies. */
class SiteDriver extends Horde_ActiveSync_Driver_Mock
{
    public function authenticate($username, $password, $domain = null)
    {
        parent::authenticate($username, $password, $domain);
        return (users()[$username]['password'] ?? null) === $password;
    }

    public function getUsernameFromEmail($email)
    {
        return $email;
    }

    public function getProvisioning()
    {
        return users()[$this->_user]['policy'] === null ? Horde_ActiveSync::PROVISIONING_NONE
            : Horde_ActiveSync::PROVISIONING_FORCE;
    }

    public function getCurrentPolicy()
    {
        return users()[$this->_user]['policy'] ?? [];
    }

    public function getFolderList()
    {
        return [];
    }

    public function getFolders()
    {
        return [];
    }

    public function setSettings(array $settings, $device)
    {
        return ['deviceinformation' => Horde_ActiveSync_Request_Settings::STATUS_SUCCESS];
    }
}

if (PHP_SAPI !== 'cli-server') {
    return; // admin.php takes what it needs
}

$states = deviceStates();
$driver = new SiteDriver(['connector' => null, 'imap' => null, 'state' => $states]);
$request = new Horde_Controller_Request_Http();
$server = new Horde_ActiveSync(
    $driver,
    new Horde_ActiveSync_Wbxml_Decoder(fopen('php://input', 'r')),
    new Horde_ActiveSync_Wbxml_Encoder(fopen('php://output', 'w+')),
    $states,
    $request
);
$server->setSupportedVersion(getenv('REAL_SERVER_VERSION') ?: Horde_ActiveSync::VERSION_FOURTEENONE);
$server->setLogger(new Horde_ActiveSync_Log_Factory(['type' => 'none', 'path' => '', 'level' => null]));
$rpc = new Horde_Rpc_ActiveSync($request, ['server' => $server, 'logger' => new Horde_Log_Logger(new Horde_Log_Handler_Stream('php://stderr'))]);
$rpc->sendOutput($rpc->getResponse(null));
