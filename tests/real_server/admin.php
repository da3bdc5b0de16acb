<?php
/**
 * What an administrator of the site does.
 *   admin.php setup               make the database
 *   admin.php policy-changed      make all devices ask for their policies again
 *   admin.php wipe USER           order the user's devices to be wiped
 *   admin.php show                print user, device, policy key and state of a wipe
 */

require __DIR__ . '/site.php';

$database = new Horde_Db_Adapter_Pdo_Sqlite(['dbname' => getenv(FOLDER_VARIABLE) . '/devices.sqlite']);

switch ($argv[1] ?? '') {
case 'setup':
    $migrations = '/usr/share/php/data/Horde_ActiveSync/migration';
    (new Horde_Db_Migration_Migrator($database, null, ['migrationsPath' => $migrations]))->up();
    break;
case 'policy-changed':
    deviceStates()->resetAllPolicyKeys();
    break;
case 'wipe':
    $ids = $database->selectValues('SELECT device_id FROM horde_activesync_device_users WHERE device_user = ?', [$argv[2]]);
    foreach ($ids as $id) {
        deviceStates()->setDeviceRWStatus($id, Horde_ActiveSync::RWSTATUS_PENDING);
    }
    break;
case 'show':
    $rows = $database->selectAll('SELECT u.device_user, u.device_policykey, d.device_rwstatus FROM ' .
        'horde_activesync_device_users u JOIN horde_activesync_device d ON d.device_id = u.device_id ORDER BY 1');
    foreach ($rows as $row) {
        echo implode(' ', $row), "\n";
    }
    break;
default:
    fwrite(STDERR, "admin.php: not a task: " . ($argv[1] ?? '') . "\n");
    exit(2);
}
