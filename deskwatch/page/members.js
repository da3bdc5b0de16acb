/// The members of a policy set in words. Ranges come from the documented schema, and what the watch does with each from the
/// statement of the protocol.

const words = {
  devicePasswordEnabled: 'Must have a lock',
  PasswordMode: 'Kind of lock that must be set',
  allowSimplePassword: 'May use a simple password such as 1111',
  minDevicePasswordLength: 'Characters it must have at least',
  minDevicePasswordComplexCharacters: 'Kinds of characters it must have at least',
  maxDevicePasswordFailedAttempts: 'Attempts it may take before the watch wipes itself',
  maxInactivityTimeDeviceLock: 'Seconds it may be idle before it locks',
  devicePasswordExpiration: 'Days a password may be kept',
  devicePasswordHistory: 'Earlier passwords that may not come back',
  requireDeviceEncryption: 'Must be encrypted',
  allowWifi: 'May use Wi-Fi',
  allowTextMessaging: 'May use text messages',
  allowPOPIMAPEmail: 'May use POP and IMAP mail',
  allowCamera: 'May use the camera',
  allowBluetoothMode: 'May use Bluetooth',
  allowBrowser: 'May use the browser',
  allowDesktopSync: 'May synchronise with a desktop',
  allowInternetSharing: 'May share its connection',
  allowStorageCard: 'May use a storage card',
  passwordRecoveryEnabled: 'May recover a lost password',
};

const columns = {
  PasswordMode: 'alphanumeric_device_password_required',
  allowBluetoothMode: 'allow_bluetooth',
  allowPOPIMAPEmail: 'allow_popimap_email',
};

const snake = (name) => name.replace(/[A-Z]/g, (letter) => `_${letter.toLowerCase()}`);

export const passwordModes = [[0, 'PIN is enough'], [64, 'alphanumeric'], [96, 'alphanumeric (96)']];

export const groups = ['Password', 'Device', 'Stored only'];

function groupOf(element) {
  if (element.watch === 'stored') {
    return 'Stored only';
  }
  return element.isPasswordRule || element.member === 'devicePasswordEnabled' ? 'Password' : 'Device';
}

let elements = [];

/// What an administrator should know of an element of the protocol.
export const elementSays = (name) => elements.find((element) => element.name === name)?.says ?? '';

/// Each member: key, column of the stored account, group, label, whether it is a switch, its range, what the watch does with it.
export async function loadMembers() {
  const read = async (file) => (await fetch(file)).json();
  const [schema, protocol] = await Promise.all([read('schema/policy-set.schema.json'), read('protocol.json')]);
  elements = protocol.elements;
  return Object.entries(words).map(([key, label]) => {
    const rule = schema.properties[key];
    const bounds = rule.anyOf?.find((part) => part.maximum) ?? rule;
    const element = elements.find((candidate) => candidate.member === key);
    return {
      key, label, group: groupOf(element), says: element.says,
      column: columns[key] ?? snake(key),
      isSwitch: rule.type === 'boolean',
      least: bounds.minimum ?? 0, most: bounds.maximum,
      mayBeZero: rule.anyOf !== undefined || bounds.minimum === 0,
      description: rule.description,
    };
  });
}

/// The value of a member in a stored account.
export function storedValue(member, account) {
  const value = account?.[member.column] ?? 0;
  if (member.key === 'PasswordMode') {
    return value ? 64 : 0;
  }
  return member.isSwitch ? value !== 0 : value;
}

/// A member that is not in a policy set counts as 0 or false.
export const givenValue = (member, policySet) => (member.isSwitch ? Boolean(policySet[member.key]) : Number(policySet[member.key] ?? 0) || 0);

/// A policy of a new account forbids nothing.
export const freeValue = (member) => (member.isSwitch ? member.key.startsWith('allow') : 0);

export function rangeText(member) {
  if (member.isSwitch || member.key === 'PasswordMode') {
    return '';
  }
  const range = member.most === undefined ? `${member.least} or more` : `${member.least} to ${member.most}`;
  return member.mayBeZero && member.least !== 0 ? `0 or ${range}` : range;
}

export const isInRange = (member, value) => Number.isInteger(value)
  && ((value === 0 && member.mayBeZero) || (value >= member.least && value <= (member.most ?? 2147483647)));
