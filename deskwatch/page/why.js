import { el, fieldName } from './dom.js';
import { on } from './server.js';

const standing = { wins: 'decides', agrees: 'agrees', loses: 'gives way' };

function nameOf(explanation, id) {
  return explanation.accounts.find((account) => account.account === id)?.name || `account ${id}`;
}

function shareText(explanation, share) {
  return `${nameOf(explanation, share.account)}: ${share.value} (${standing[share.standing]})`;
}

function settingCell(field) {
  if (!field.setting) {
    return el('td', { className: 'soft' }, 'merged, not enforced');
  }
  const isSame = field.demanded === null || field.demanded === field.now;
  return el('td', {}, fieldName(field.setting), el('br'), `the watch has ${field.now ?? 'no value'}`,
    isSame ? null : el('span', { className: 'chip warn' }, `${field.demanded} is demanded`));
}

function fieldRow(explanation, field) {
  return el('tr', {}, el('th', { scope: 'row' }, fieldName(field.field)), el('td', { className: 'number' }, String(field.merged)),
    el('td', {}, field.accounts.length === 0 ? 'no account says anything'
      : el('ul', {}, ...field.accounts.map((share) => el('li', {}, shareText(explanation, share))))),
    el('td', {}, field.rule), settingCell(field));
}

function passwordFacts(explanation) {
  const { enforcingAccount, scores } = explanation.password;
  const facts = scores.map(({ account, score }) => el('div', {}, el('dt', {}, nameOf(explanation, account)),
    el('dd', {}, score === null ? 'requires no password' : `score ${score}${account === enforcingAccount ? ', enforces it' : ''}`)));
  return facts.length ? el('dl', { className: 'facts' }, ...facts)
    : el('p', { className: 'soft' }, 'No account is stored, so nothing is enforced.');
}

function notesList(explanation) {
  if (!explanation.notes.length) {
    return el('p', { className: 'soft' }, 'Nothing an administrator would not expect.');
  }
  return el('ul', { className: 'notes' }, ...explanation.notes.map((note) => el('li', {}, note.text, ' ',
    el('span', { className: 'soft' }, note.accounts.map((id) => nameOf(explanation, id)).join(', ')))));
}

const heads = ['Field', 'Merged', 'Accounts', 'Rule', 'Setting of the watch'];

export function startWhy(panel) {
  const filter = el('input', { type: 'search', placeholder: 'for example wifi', 'aria-label': 'Filter the fields' });
  const body = el('tbody');
  const password = el('div');
  const notes = el('div');
  let explanation = null;
  const drawRows = () => {
    const wanted = filter.value.trim().toLowerCase();
    const rows = (explanation?.fields ?? []).filter((field) => JSON.stringify(field).toLowerCase().includes(wanted));
    body.replaceChildren(...rows.map((field) => fieldRow(explanation, field)));
    if (!rows.length) {
      body.append(el('tr', {}, el('td', { colSpan: heads.length, className: 'soft' }, explanation ? 'No field has that in it.' : 'Waiting for the watch.')));
    }
  };
  filter.addEventListener('input', drawRows);
  panel.append(
    el('section', { className: 'sheet' }, el('h2', {}, 'Whose password rules count'), password,
      el('p', { className: 'soft' }, 'The account with the highest score enforces the password; of equal scores, the later account.')),
    el('section', { className: 'sheet' },
      el('div', { className: 'row middle' }, el('h2', { className: 'grow' }, 'Why each rule is what it is'), filter),
      el('div', { className: 'scroll', tabIndex: 0, role: 'region', 'aria-label': 'The merged policy' },
        el('table', {}, el('thead', {}, el('tr', {}, ...heads.map((head) => el('th', { scope: 'col' }, head)))), body))),
    el('section', { className: 'sheet' }, el('h2', {}, 'Worth knowing'), notes));
  drawRows();
  on('explanation', (value) => {
    explanation = value;
    drawRows();
    password.replaceChildren(passwordFacts(value));
    notes.replaceChildren(notesList(value));
  });
}
