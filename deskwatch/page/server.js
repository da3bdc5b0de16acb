/// What the panel's process tells and takes: events down, actions up.

const listeners = new Map();
const newest = new Map();
let lastEntry = '';
let source = null;
let againTimer = 0;

/// Calls the listener with each value of that name, and at once with the newest state if there is one.
export function on(name, listener) {
  listeners.set(name, [...(listeners.get(name) ?? []), listener]);
  if (newest.has(name)) {
    listener(newest.get(name));
  }
}

export function tell(name, value, isState = true) {
  if (isState) {
    newest.set(name, value);
  }
  (listeners.get(name) ?? []).forEach((listener) => listener(value));
}

export const latest = (name) => newest.get(name);

const states = ['watch', 'status', 'explanation', 'panel', 'recording'];

export function connect() {
  clearTimeout(againTimer);
  source?.close();
  source = new EventSource('events' + (lastEntry ? `?from=${encodeURIComponent(lastEntry)}` : ''));
  source.onopen = () => tell('connection', 'open');
  source.onerror = () => {
    tell('connection', 'lost');
    if (source.readyState === EventSource.CLOSED) {
      againTimer = setTimeout(connect, 1000); // the browser itself gives up after an answer that is no stream
    }
  };
  for (const name of states) {
    source.addEventListener(name, (event) => tell(name, JSON.parse(event.data)));
  }
  source.addEventListener('entry', (event) => {
    lastEntry = event.lastEventId;
    tell('entry', JSON.parse(event.data), false);
  });
  source.addEventListener('lost', (event) => tell('lost', JSON.parse(event.data), false));
  source.addEventListener('parked', () => pause('parked'));
  source.addEventListener('bye', () => {
    pause('bye');
    againTimer = setTimeout(connect, 2000);
  });
}

function pause(why) {
  source.close();
  tell('connection', why);
}

// A page that nobody sees gives its connection to one that somebody does.
document.addEventListener('visibilitychange', () => {
  if (document.hidden) {
    source?.close();
  } else if (newest.get('connection') !== 'parked') {
    connect();
  }
});

/// Does something on the watch. Returns {status, output, errors, command}; status 0 is success.
export async function act(action, isShown = true) {
  let result;
  try {
    const answer = await fetch('act', {
      method: 'POST', headers: { 'Content-Type': 'application/json' }, body: JSON.stringify(action),
    });
    result = answer.ok ? await answer.json() : { status: -1, output: '', errors: await answer.text(), command: '' };
  } catch {
    result = { status: -1, output: '', errors: 'The panel does not answer. Is it still running in its terminal?', command: '' };
  }
  if (isShown) {
    tell('acted', { action, ...result }, false);
  }
  return result;
}

/// What a command says when it fails, without the name of the program.
export function reasonOf(result) {
  const reason = (result.errors.trim() || result.output.trim() || 'it failed without a reason').replace(/^deskwatch: ([a-z ]+: )?/, '');
  return reason.charAt(0).toUpperCase() + reason.slice(1);
}
