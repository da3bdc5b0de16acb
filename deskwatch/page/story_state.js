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
  const content = event.entries?.req ?? event.extraData?.result ?? '';
  return `${event.in ? 'in ' : 'out'} ${what} ${other} ${content}`.trim();
}

export function stateAfter(head, events, apps, keys) {
  const state = { serviceRunning: head.serviceRunning, idleExit: null, accounts: [], settings: { quality: 0, minimum_length: 0 },
    keys: { ...head, [keys.applied]: 0 }, launches: [] };
  for (const event of events) {
    if (event.key?.startsWith('/vconf/')) {
      state.keys[event.key.slice('/vconf/'.length)] = event.value;
    } else if (settings[event.key]) {
      state.settings[settings[event.key]] = Number(event.value) || 0;
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
