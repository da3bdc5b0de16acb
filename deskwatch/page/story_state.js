/// What a watch would show after the first events of a recording.

const settings = {
  '/dpm/password/quality': 'quality', '/dpm/password/minimum-length': 'minimum_length',
};

const asText = (value) => (value === null ? 'removed' : JSON.stringify(value));

export function eventText(event) {
  const other = event.from ?? event.to ?? event.application ?? '';
  const what = event.in ?? event.out;
  if (event.key) {
    return `${event.in ? 'in ' : 'out'} ${event.key} = ${asText(event.value)}`;
  }
  if (event.around || event.expect) {
    return Object.values(event).map((value) => (typeof value === 'string' ? value : JSON.stringify(value))).join(' ');
  }
  const content = event.entries?.req ?? event.extraData?.result ?? '';
  return `${event.in ? 'in ' : 'out'} ${what} ${other} ${content}`.trim();
}

/// The recorded settings by their paths. Format 1 has the keys alone, and by their names.
function settingsOf(head) {
  return head.settings ?? Object.fromEntries(Object.entries(head).map(([key, value]) => [`/vconf/${key}`, value]));
}

function setValue(state, path, value) {
  if (path.startsWith('/vconf/')) {
    state.keys[path.slice('/vconf/'.length)] = value;
  } else if (settings[path]) {
    state.settings[settings[path]] = Number(value) || 0;
  }
}

export function stateAfter(head, events, apps, keys) {
  const state = { serviceRunning: head.serviceRunning, idleExit: null, accounts: [], settings: { quality: 0, minimum_length: 0 },
    keys: { [keys.applied]: 0 }, launches: (head.waiting ?? []).map((application) => ({ application, waiting: true, extraData: {} })) };
  Object.entries(settingsOf(head)).forEach(([path, value]) => setValue(state, path, value));
  for (const event of events) {
    if (event.key) {
      setValue(state, event.key, event.value);
    } else if (event.out === 'launch') {
      state.launches.push({ application: event.to, waiting: event.replyWanted, extraData: event.extraData });
    } else if (event.in === 'reply') {
      const asked = state.launches.find((launch) => launch.application === event.from && launch.waiting);
      if (asked) {
        asked.waiting = false;
      }
    }
  }
  return state;
}
