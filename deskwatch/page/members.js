/// The members of a policy set in words. Ranges and what is not enforced come from the schema that the project documents.

const words = {
  devicePasswordEnabled: ['Password', 'Must have a lock'],
  PasswordMode: ['Password', 'Kind of lock that must be set'],
  allowSimplePassword: ['Password', 'May use a simple password such as 1111'],
  minDevicePasswordLength: ['Password', 'Characters it must have at least'],
  minDevicePasswordComplexCharacters: ['Password', 'Kinds of characters it must have at least'],
  maxDevicePasswordFailedAttempts: ['Password', 'Attempts it may take before the watch wipes itself'],
  maxInactivityTimeDeviceLock: ['Password', 'Seconds it may be idle before it locks'],
  devicePasswordExpiration: ['Password', 'Days a password may be kept'],
  devicePasswordHistory: ['Password', 'Earlier passwords that may not come back'],
  requireDeviceEncryption: ['Device', 'Must be encrypted'],
  allowWifi: ['Device', 'May use Wi-Fi'],
  allowTextMessaging: ['Device', 'May use text messages'],
  allowPOPIMAPEmail: ['Device', 'May use POP and IMAP mail'],
  allowCamera: ['Stored only', 'May use the camera'],
  allowBluetoothMode: ['Stored only', 'May use Bluetooth'],
  allowBrowser: ['Stored only', 'May use the browser'],
  allowDesktopSync: ['Stored only', 'May synchronise with a desktop'],
  allowInternetSharing: ['Stored only', 'May share its connection'],
  allowStorageCard: ['Stored only', 'May use a storage card'],
  passwordRecoveryEnabled: ['Stored only', 'May recover a lost password'],
};

const columns = {
  PasswordMode: 'alphanumeric_device_password_required',
  allowBluetoothMode: 'allow_bluetooth',
  allowPOPIMAPEmail: 'allow_popimap_email',
};

const snake = (name) => name.replace(/[A-Z]/g, (letter) => `_${letter.toLowerCase()}`);

export const passwordModes = [[0, 'PIN is enough'], [64, 'alphanumeric'], [96, 'alphanumeric (96)']];

/// Each member: key, column of the stored account, group, label, whether it is a switch, and its range.
export async function loadMembers() {
  const schema = await (await fetch('schema/policy-set.schema.json')).json();
  return Object.entries(words).map(([key, [group, label]]) => {
    const rule = schema.properties[key];
    const bounds = rule.anyOf?.find((part) => part.maximum) ?? rule;
    return {
      key, group, label,
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
