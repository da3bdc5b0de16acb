import { button, el, icon } from './dom.js';

const lockNames = ['No lock', 'Locked with a PIN', 'Locked with a password'];

const screen = (name, ...content) => el('div', { className: `screen screen-${name}` }, ...content);

/// Runs what a button does, with the reason shown where the watch refuses it.
function doing(hand, view, action, whenDone = () => {}) {
  return async (event) => {
    const place = view().querySelector('.why');
    const pressed = event.currentTarget;
    pressed.disabled = true;
    place.textContent = '';
    const why = await hand.do(action());
    pressed.disabled = false;
    place.textContent = why;
    if (!why) {
      whenDone();
    }
  };
}

function plain(name, hand, title, words, buttons) {
  const view = screen(name, ...title, ...words, el('p', { className: 'why', role: 'alert' }), el('div', { className: 'keys' }));
  view.querySelector('.keys').append(...buttons(() => view));
  return view;
}

function off(_, hand) {
  return plain('off', hand, [icon('power'), el('h2', {}, 'Switched off')], [],
    (view) => [button('Switch on', doing(hand, view, () => ({ action: 'boot' })), { className: 'do' })]);
}

function wiped(_, hand) {
  return plain('wiped', hand, [icon('wipe'), el('h2', {}, 'Wiped')],
    [el('p', { className: 'dim' }, 'All of the internal storage was erased.')], () => [button('Go on', () => hand.close('wiped'))]);
}

function tutorial(_, hand) {
  return plain('tutorial', hand, [icon('hand'), el('h2', {}, 'Getting to know your watch')],
    [el('p', { className: 'dim' }, 'No popup opens until this ends.')],
    (view) => [button('End the tutorial', doing(hand, view, () => ({ action: 'tutorial', state: 'done' })), { className: 'do' })]);
}

/// The rules in the words of the popup's launch request.
function rulesOf(extraData) {
  const rules = [`${extraData.password_min_length ?? 4} characters or more`];
  if (extraData.allow_simple === '0') {
    rules.push('not a simple one');
  }
  return rules;
}

function popup({ launch }, hand) {
  const account = launch.extraData.ACCOUNT_NAME ?? '';
  const answer = (view, value) => doing(hand, view, () => ({ action: 'popup', answer: value }));
  const view = plain('popup', hand,
    [el('h2', {}, 'Set a lock'), el('p', { className: 'name', title: account }, account || 'An account')],
    [el('ul', {}, ...rulesOf(launch.extraData).map((rule) => el('li', {}, rule)))],
    (found) => [button('Stop sync', answer(found, 'sync-off'), { className: 'no' }), button('Later', answer(found, 'dismiss')),
      button('OK', answer(found, 'ok'), { className: 'do' })]);
  view.classList.add('tight');
  return view;
}

const demandText = ({ quality, length }) => {
  const kind = quality >= 128 ? 'Letters and digits' : quality > 32 ? 'A password' : quality >= 32 ? 'A PIN or password' : '';
  return kind ? `${kind}, ${length} or more` : 'Nothing is demanded';
};

/// Deletes a digit; without any it leads back.
function padOf(typed, changed, back) {
  const press = (digit) => () => {
    typed.value = (typed.value + digit).slice(0, 16);
    changed();
  };
  const digits = ['1', '2', '3', '4', '5', '6', '7', '8', '9', '0'].map((digit) => button(digit, press(digit)));
  const erase = button('', () => {
    if (typed.value === '') {
      back();
    }
    typed.value = typed.value.slice(0, -1);
    changed();
  }, { className: 'erase' });
  return [...digits, erase];
}

/// What is typed stays in the page: the watch is told how long it is.
function pinScreen(hand, demand, { done, menu }) {
  const typed = { value: '' };
  const dots = el('p', { className: 'dots', 'aria-live': 'polite' });
  const changed = () => {
    dots.textContent = '•'.repeat(typed.value.length) || ' ';
    dots.setAttribute('aria-label', `${typed.value.length} digits`);
    const erase = view.querySelector('.erase');
    erase.textContent = typed.value ? '⌫' : '‹';
    erase.setAttribute('aria-label', typed.value ? 'Delete the last digit' : 'Back');
  };
  const view = screen('pin', el('h2', {}, 'New PIN'), dots, el('div', { className: 'pad' }));
  const set = async () => {
    const why = await hand.do({ action: 'lock', lock: 'pin', length: Math.max(1, typed.value.length) });
    why ? menu(why) : done();
  };
  view.querySelector('.pad').append(...padOf(typed, changed, () => menu()), button('✓', set, { className: 'do', 'aria-label': 'Set the PIN' }));
  view.classList.add('tight');
  changed();
  return view;
}

function passwordScreen(hand, demand, { done, menu }) {
  const field = el('input', { type: 'password', 'aria-label': 'New password', autocomplete: 'new-password', maxLength: 64 });
  const form = el('form', { onsubmit: (event) => {
    event.preventDefault();
    press.click();
  } }, field);
  const view = screen('password', el('h2', {}, 'New password'), el('p', { className: 'dim' }, demandText(demand)), form,
    el('p', { className: 'why', role: 'alert' }), el('div', { className: 'keys' }));
  const set = doing(hand, () => view, () => ({ action: 'lock', lock: 'password', length: Math.max(1, field.value.length) }), done);
  const press = button('Set', set, { className: 'do' });
  view.querySelector('.keys').append(button('Back', () => menu()), press);
  return view;
}

function lock({ demand, has }, hand) {
  const close = () => hand.close('lock');
  let current = null;
  const show = (next) => {
    current.replaceWith(next);
    current = next;
    next.querySelector('input, button').focus();
  };
  const menu = (why = '') => {
    view.querySelector('.why').textContent = why;
    show(view);
  };
  const swap = (make) => () => show(make(hand, demand, { done: close, menu }));
  const view = plain('lock', hand, [icon('lock'), el('h2', {}, 'Screen lock')],
    [el('p', { className: 'dim' }, demandText(demand))],
    (found) => [button('PIN', swap(pinScreen)), button('Password', swap(passwordScreen)),
      ...(has ? [button('Remove', doing(hand, found, () => ({ action: 'lock', lock: 'none' }), close), { className: 'no' })] : []),
      button('Back', close)]);
  view.classList.add('tight');
  current = view;
  return view;
}

function encryption({ isEncrypted }, hand) {
  const close = () => hand.close('encryption');
  if (isEncrypted) {
    return plain('encryption', hand, [icon('shield'), el('h2', {}, 'Encrypted')], [], () => [button('Back', close)]);
  }
  return plain('encryption', hand, [icon('shield'), el('h2', {}, 'Encrypt the watch')],
    [el('p', { className: 'dim' }, 'A policy may demand it.')],
    (found) => [button('Later', close), button('Encrypt', async (event) => {
      const drawing = found().querySelector('.icon');
      found().querySelector('h2').textContent = 'Encrypting…';
      drawing.replaceWith(icon('turn', 'icon spin'));
      await doing(hand, found, () => ({ action: 'encrypt' }), close)(event);
    }, { className: 'do' })]);
}

function mail({ inbox, accounts }, hand) {
  const view = plain('mail', hand, [icon('mail'), el('h2', {}, 'Mail')],
    [el('p', { className: 'dim' }, accounts.length === 1 ? '1 account' : `${accounts.length} accounts`),
      el('p', { className: 'dim' }, inbox.includes('req_disable_password_eas_accounts')
        ? 'Asked to stop synchronising' : inbox.length ? `${inbox.length} requests came` : 'No request came')],
    () => [button('Back', () => hand.close('mail'))]);
  return view;
}

const timeText = () => new Date().toTimeString().slice(0, 5);

const lockText = (kind, isEncrypted) => `${lockNames[kind] ?? 'No lock'}${isEncrypted ? ', encrypted' : ''}`;

/// Nobody but the wearer knows the PIN, so that a press stands for a right or a wrong one.
function locked({ lock: kind, isEncrypted, wrong, most, isExpired }, hand) {
  const secret = kind === 1 ? 'PIN' : 'password';
  const state = isExpired ? `The ${secret} has expired` : wrong ? `${wrong}${most ? ` of ${most}` : ''} wrong` : lockText(kind, isEncrypted);
  return plain('locked', hand, [icon('lock'), el('p', { className: 'clock' }, timeText())], [el('p', { className: 'dim' }, state)],
    (found) => [button(`Wrong ${secret}`, doing(hand, found, () => ({ action: 'wrong-password' })), { className: 'no' }),
      isExpired ? button('Set another', () => hand.open('lock'), { className: 'do' })
        : button('Unlock', doing(hand, found, () => ({ action: 'unlock' }), hand.unlock), { className: 'do' })]);
}

function clock({ lock: kind, isEncrypted, mayEncrypt, inbox }, hand) {
  return screen('clock',
    el('p', { className: 'clock' }, timeText()),
    el('p', { className: 'dim' }, lockText(kind, isEncrypted)),
    el('div', { className: 'keys' },
      kind ? el('button', { type: 'button', title: 'Lock now', 'aria-label': 'Lock now', onclick: hand.lock }, icon('sleep')) : null,
      el('button', { type: 'button', title: 'Screen lock', 'aria-label': 'Screen lock', onclick: () => hand.open('lock') },
        icon(kind ? 'lock' : 'open')),
      mayEncrypt || isEncrypted ? el('button', { type: 'button', title: 'Encryption', 'aria-label': 'Encryption',
        onclick: () => hand.open('encryption') }, icon('shield')) : null,
      el('button', { type: 'button', title: 'Mail', 'aria-label': inbox ? `Mail, ${inbox} requests` : 'Mail',
        onclick: () => hand.open('mail') }, icon('mail'))));
}

export const screens = { off, wiped, tutorial, popup, lock, encryption, mail, locked, clock };
