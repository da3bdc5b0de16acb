import { el } from './dom.js';

const short = (name) => name.replace(/^.*\//, '');

function changes(values) {
  return Object.entries(values).filter(([, { before, after }]) => before !== after)
    .map(([name, { before, after }]) => el('li', {}, el('code', {}, short(name)), ' ',
      el('span', { className: 'was' }, before === null || before === '' ? 'nothing' : String(before)), ' → ',
      el('strong', {}, after === null ? 'nothing' : String(after))));
}

const screenText = (screen) => `opens ${screen.application}${screen.reason ? `: ${screen.reason}` : ''}`;

/// What would change, as `deskwatch whatif` tells it.
export function forecastView(forecast) {
  const items = [
    ...forecast.accounts.map((account) => el('li', {}, `account ${account.account} (${account.name}) would be ${account.new ? 'new' : 'replaced'}`)),
    ...changes(forecast.settings), ...changes(forecast.keys),
    ...forecast.screens.map((screen) => el('li', {}, screenText(screen))),
    ...forecast.remarks.map((remark) => el('li', {}, remark.replace(/^\/dev\/stdin:? ?/, ''))),
  ];
  return el('div', {}, el('h4', {}, items.length ? 'This would change' : 'Nothing would change'), el('ul', {}, ...items));
}
