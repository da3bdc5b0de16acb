import { el, svg } from './dom.js';
import { act, latest, on, reasonOf } from './server.js';
import { screens } from './face_screens.js';

export const apps = {
  service: 'com.velmor.tesk-agent',
  mail: 'com.velmor.quillon.consumer',
  popup: 'com.velmor.tesk-popup',
  lock: 'com.velmor.veilpane-setting',
  encryption: 'com.velmor.dialset.encryption',
  menu: 'com.velmor.dialset.service',
};

export const keys = {
  lock: 'db/setting/lock_type',
  crypto: 'db/ode/crypto_state',
  tutorial: 'memory/private/com.velmor.hearth/tutorial_is_in_progress',
  applied: 'db/eas/password_policy_applied',
};

const local = { opened: null, closed: { lock: 0, encryption: 0 }, wipesSeen: 0, isUnlocked: false, inbox: [], story: null };
let shown = '';
let place = null;
let lastName = '';

const launchesOf = (status, application) => status.launches.filter((launch) => launch.application === application);

/// Which screen the watch shows: what waits for the wearer comes before what the wearer opened.
function screenOf(status, isBooted) {
  if (!isBooted) {
    return { name: 'off' };
  }
  if ((status.wipes ?? 0) > local.wipesSeen) {
    return { name: 'wiped' };
  }
  if (status.keys[keys.tutorial] === 1) {
    return { name: 'tutorial' };
  }
  const popup = launchesOf(status, apps.popup).find((launch) => launch.waiting);
  if (popup) {
    return { name: 'popup', launch: popup };
  }
  const demand = { quality: status.settings.quality ?? 0, length: Math.max(4, status.settings.minimum_length ?? 0) };
  const locks = launchesOf(status, apps.lock).length;
  if (local.opened === 'lock' || (locks > local.closed.lock && status.keys[keys.applied] === 0)) {
    return { name: 'lock', demand, has: status.keys[keys.lock] };
  }
  const encryptions = launchesOf(status, apps.encryption).length;
  if (local.opened === 'encryption' || (encryptions > local.closed.encryption && status.keys[keys.crypto] !== 'encrypted')) {
    return { name: 'encryption', isEncrypted: status.keys[keys.crypto] === 'encrypted' };
  }
  if (status.keys[keys.lock] && (!local.isUnlocked || status.lockScreen?.locked)) {
    const { wrongAttempts = 0, passwordAge = 0 } = status.lockScreen ?? {};
    const { maximum_failed_attempts_for_wipe: most, expires } = status.settings;
    return {
      name: 'locked', lock: status.keys[keys.lock], isEncrypted: status.keys[keys.crypto] === 'encrypted',
      wrong: wrongAttempts, most, isExpired: expires > 0 && passwordAge >= expires,
    };
  }
  if (local.opened === 'mail') {
    return { name: 'mail', inbox: local.inbox, accounts: status.accounts.map((account) => account.account_name) };
  }
  return {
    name: 'clock', lock: status.keys[keys.lock], isEncrypted: status.keys[keys.crypto] === 'encrypted',
    mayEncrypt: launchesOf(status, apps.menu).length > 0, inbox: local.inbox.length,
  };
}

const names = {
  off: 'The watch is switched off.', wiped: 'The internal storage was wiped.', tutorial: 'The tutorial is shown.',
  popup: 'The watch asks for a lock.', lock: 'The lock settings are open.', encryption: 'The encryption is open.',
  mail: 'The mail application is open.', locked: 'The watch is locked.', clock: 'The clock is shown.', story: 'A recording is shown.',
};

/// The wearer's hand: what the buttons of the screens do.
const hand = {
  do: async (action) => {
    const result = await act(action);
    local.isUnlocked = !['boot', 'wrong-password', 'unlock'].includes(action.action); // the wearer is at the watch
    return result.status === 0 ? '' : reasonOf(result);
  },
  open: (what) => {
    local.opened = what;
    draw();
  },
  close: (what) => {
    const status = latest('status');
    local.opened = null;
    if (what === 'lock' || what === 'encryption') {
      local.closed[what] = launchesOf(status, apps[what]).length;
    }
    if (what === 'wiped') {
      local.wipesSeen = status.wipes;
    }
    draw();
  },
  lock: () => {
    local.isUnlocked = false;
    draw();
  },
  unlock: () => {
    local.isUnlocked = true;
    draw();
  },
};

function drawing() {
  const ticks = Array.from({ length: 60 }, (_, minute) => svg('line', {
    x1: 180, x2: 180, y1: 14, y2: minute % 5 ? 17 : 21, 'stroke-width': minute % 5 ? 1 : 2, class: 'tick',
    transform: `rotate(${minute * 6} 180 180)`,
  }));
  return svg('svg', { viewBox: '0 0 360 360', 'aria-hidden': 'true' },
    svg('circle', { cx: 180, cy: 180, r: 174, class: 'bezel', 'stroke-width': 10 }), ...ticks,
    svg('circle', { cx: 180, cy: 180, r: 166, class: 'arc', id: 'idle-arc', 'stroke-width': 4, pathLength: 10,
      'stroke-dasharray': '0 10', 'stroke-linecap': 'butt', transform: 'rotate(-90 180 180)' }));
}

/// The time until the service ends itself, as an arc around the face.
function drawIdle(status) {
  const left = status?.idleExit ? Math.min(status.idleExit.seconds, 10) : 0;
  document.getElementById('idle-arc').setAttribute('stroke-dasharray', `${left} 10`);
}

function draw() {
  const watch = latest('watch');
  const status = local.story ?? latest('status');
  if (!watch || (!status && watch.booted)) {
    return;
  }
  if (!watch.booted) {
    Object.assign(local, { isUnlocked: false, wipesSeen: 0, opened: null });
  }
  const screen = screenOf(status, watch.booted || local.story !== null);
  const content = JSON.stringify(screen) + String(local.story !== null);
  drawIdle(status);
  if (content === shown) {
    return;
  }
  shown = content;
  const hadFocus = place.contains(document.activeElement);
  place.querySelector('.screen')?.remove();
  const view = screens[screen.name](screen, hand);
  view.inert = local.story !== null; // what is played back is looked at
  place.append(view);
  if (hadFocus) {
    (view.querySelector('button, input') ?? place).focus();
  }
  if (screen.name !== lastName) {
    document.getElementById('announce').textContent = (local.story ? 'Played back: ' : '') + names[screen.name];
    lastName = screen.name;
  }
}

/// Shows another state than the watch's own, {keys, settings, launches, accounts, idleExit}; null ends that.
export function showStory(state) {
  local.story = state;
  lastName = '';
  draw();
}

function take(entry) {
  const request = entry.detail?.entries;
  if (entry.kind === 'message' && entry.detail?.to === apps.mail) {
    local.inbox = [...local.inbox, request.req].slice(-20);
    draw();
  }
}

export function startFace() {
  place = el('div', { className: 'body', role: 'group', 'aria-label': 'Face of the watch', tabIndex: -1 }, drawing());
  document.getElementById('face').replaceWith(place);
  on('status', draw);
  on('watch', draw);
  on('entry', take);
  setInterval(() => {
    const time = place.querySelector('.clock');
    if (time) {
      time.textContent = new Date().toTimeString().slice(0, 5);
    }
  }, 1000);
}
