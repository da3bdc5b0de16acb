import { button, el, labelled, newId } from './dom.js';
import { act, latest, on, reasonOf } from './server.js';
import { keys } from './face.js';

const countryNames = new Intl.DisplayNames(['en'], { type: 'region' });

function tool(title, hint, ...content) {
  return el('section', { className: 'sheet' }, el('h3', {}, title), el('p', { className: 'soft' }, hint), ...content);
}

export function startTrouble(panel) {
  const outcome = el('p', { role: 'status' });
  const run = async (action) => {
    const result = await act(action);
    outcome.className = result.status === 0 ? 'chip good' : 'error';
    outcome.textContent = result.status === 0 ? result.output.trim() || 'Done.' : reasonOf(result);
  };
  const doing = (text, action, properties) => button(text, () => run(typeof action === 'function' ? action() : action), properties);
  panel.append(outcome, el('div', { className: 'tools' }, faults(doing), events(doing), store(doing), key(doing), outside(doing), time(doing), mail(doing)));
}

function faults(doing) {
  const list = newId('functions');
  const name = el('input', { type: 'text', list, value: 'dpm_password_set_quality' });
  const code = el('input', { type: 'number', value: '-13' });
  const nth = el('input', { type: 'number', min: 1, placeholder: 'every' });
  const failing = el('ul', { className: 'notes' });
  const choices = el('datalist', { id: list });
  on('panel', (panel) => choices.replaceChildren(...panel.functions.map((value) => el('option', { value }))));
  on('status', (status) => failing.replaceChildren(...status.faults.map((fault) => el('li', {}, el('code', {}, fault.function),
    ` returns ${fault.code} at ${fault.nth ? `call ${fault.nth}` : 'every call'}`)),
  ...(status.faults.length ? [] : [el('li', { className: 'soft' }, 'No function fails.')])));
  return tool('A function of the platform fails', 'The service gets the code instead of what it asked for.',
    choices,
    labelled('Function', name),
    el('div', { className: 'row' }, labelled('Code', code), labelled('Only call', nth)),
    el('div', { className: 'row' }, doing('Let it fail', () => ({ action: 'fault', function: name.value, code: Math.trunc(Number(code.value)),
      ...(nth.value ? { nth: Math.trunc(Number(nth.value)) } : {}) }), { className: 'primary' }),
    doing('Let everything work', { action: 'clear-faults' })), failing);
}

function events(doing) {
  return tool('Events and the service', 'What the system tells all applications, and a crash.',
    el('div', { className: 'row' }, doing('Low memory', { action: 'event', event: 'low-memory' }),
      doing('Low battery', { action: 'event', event: 'low-battery' }), doing('Turn the watch', { action: 'event', event: 'orientation' })),
    el('div', { className: 'row' }, doing('Kill the service', { action: 'kill' }, { className: 'danger' })));
}

function store(doing) {
  return tool('The settings store is away', 'The service can neither read nor write a key, nor ask to hear of changes.',
    el('div', { className: 'row' }, doing('Take it away', { action: 'store-away' }, { className: 'danger' }),
      doing('Give it back', { action: 'clear-faults' })));
}

function key(doing) {
  const name = el('input', { type: 'text', value: keys.applied });
  const value = el('input', { type: 'text', value: '1' });
  const isText = el('input', { type: 'checkbox' });
  return tool('Set any key', 'As another application would. A key begins with db/, file/ or memory/.', labelled('Key', name),
    el('div', { className: 'row' }, labelled('Value', value), el('label', {}, 'It is a text', isText)),
    el('div', { className: 'row' }, doing('Set the key', () => ({ action: 'key', key: name.value,
      value: !isText.checked && /^-?\d+$/.test(value.value) ? Number(value.value) : value.value }), { className: 'primary' })));
}

function outside(doing) {
  const country = el('select');
  const choose = (code) => {
    country.value = [...country.options].some((option) => option.value === code) ? code : country.value;
  };
  const lock = el('select', {}, ...['no lock', 'PIN', 'password'].map((text, value) => el('option', { value }, text)));
  on('status', (status) => {
    choose(status.keys['db/rgn/country_iso']);
    lock.value = String(status.keys[keys.lock] ?? 0);
  });
  on('panel', (panel) => {
    const named = panel.countries.map((code) => [countryNames.of(code) ?? code, code]).sort(([one], [other]) => one.localeCompare(other, 'en'));
    country.replaceChildren(...named.map(([name, code]) => el('option', { value: code }, `${name} (${code})`)));
    choose(latest('status')?.keys['db/rgn/country_iso']);
  });
  return tool('The watch changes by itself', 'Without the lock settings, so that no rule is asked.',
    el('div', { className: 'row' }, labelled('Country', country), doing('Set the country', () => ({ action: 'key', key: 'db/rgn/country_iso', value: country.value }))),
    el('div', { className: 'row' }, labelled('Lock of the screen', lock), doing('Set the lock', () => ({ action: 'key', key: keys.lock, value: Number(lock.value) }))),
    el('div', { className: 'row' }, doing('Start the tutorial', { action: 'tutorial', state: 'start' })));
}

function time(doing) {
  const days = el('input', { type: 'number', min: 1, value: '365' });
  const seconds = el('input', { type: 'number', min: 1, value: '900' });
  return tool('Time passes', 'The lock screen follows the settings: a password expires, and a watch that nobody uses locks itself.',
    el('div', { className: 'row' }, labelled('Age of the password in days', days),
      doing('Make it that old', () => ({ action: 'age', days: Math.trunc(Number(days.value)) }))),
    el('div', { className: 'row' }, labelled('Seconds without use', seconds),
      doing('Leave the watch alone', () => ({ action: 'idle', seconds: Math.trunc(Number(seconds.value)) }))));
}

function mail(doing) {
  const wipe = doing('Wipe now', { action: 'mail', request: 'wipe' }, { className: 'danger', hidden: true });
  const ask = button('Wipe…', () => {
    wipe.hidden = false;
    ask.hidden = true;
    wipe.focus();
  }, { className: 'danger' });
  wipe.addEventListener('click', () => {
    wipe.hidden = true;
    ask.hidden = false;
  });
  return tool('The mail application asks', 'Requests that carry no policy. A wipe erases the internal storage of this watch.',
    el('div', { className: 'row' }, doing('Check the password', { action: 'mail', request: 'check-password' }),
      doing('Check the encryption', { action: 'mail', request: 'check-encryption' })),
    el('div', { className: 'row' }, ask, wipe));
}
