import { button, el, newId } from './dom.js';
import { act, latest, reasonOf } from './server.js';
import { freeValue, groups, isInRange, passwordModes, rangeText, storedValue } from './members.js';
import { forecastView } from './forecast.js';

const groupNotes = { 'Stored only': 'Stored only: the watch keeps these and enforces none of them' };

/// What the watch makes of a member of one account, from the explanation.
function reasonText(member, id, explanation) {
  const field = explanation?.fields.find((candidate) => candidate.field === member.column);
  const share = field?.accounts.find((candidate) => candidate.account === id);
  if (!share) {
    return '';
  }
  const texts = field.setting
    ? { wins: 'This account decides.', agrees: 'It agrees with what is enforced.', loses: `It gives way: ${field.merged} is enforced.` }
    : { wins: 'This account decides what is merged, not enforced.', agrees: 'It agrees with what is merged, not enforced.',
      loses: `It gives way: ${field.merged} is merged, not enforced.` };
  return texts[share.standing];
}

/// One account: what the watch stores of it, the draft of what would be sent, and a row for each member.
export class AccountCard {
  constructor(members, id, onGone) {
    Object.assign(this, { members, id, onGone, stored: null, changes: new Map(), rows: new Map(), name: '' });
    this.root = el('article', { className: 'sheet card', 'aria-label': `Account ${id}` });
    this.title = el('h3');
    this.unsent = el('p', { className: 'chip warn' });
    this.result = el('div', { role: 'status' });
    this.size = el('p', { className: 'soft size' });
    this.send = button('Send', () => this.preview(), { className: 'primary' });
    this.reset = button('Reset all', () => this.resetAll());
    this.remove = button('Remove', () => this.removeAccount(), { className: 'danger' });
    this.root.append(el('header', {}, this.title, this.unsent, this.reset, this.remove, this.send), this.result,
      el('div', { className: 'members' }, ...groups.map((group) => this.groupView(group))), this.size);
  }

  groupView(group) {
    return el('fieldset', { className: 'group' }, el('legend', { className: 'soft' }, groupNotes[group] ?? group),
      ...this.members.filter((member) => member.group === group).map((member) => this.row(member)));
  }

  row(member) {
    const id = newId('member');
    const control = this.control(member, id);
    const undo = button('Reset', () => this.change(member, undefined), { className: 'plain', 'aria-label': `Reset ${member.key}` });
    const reason = el('span', { className: 'standing' });
    const row = el('div', { className: 'member' }, el('div', { className: 'words' },
      el('label', { htmlFor: id }, member.label), el('code', {}, member.key), el('span', { className: 'soft' }, rangeText(member))),
    el('div', { className: 'control' }, undo, control), el('p', { className: 'reason' }, member.says, ' ', reason));
    this.rows.set(member.key, { row, control, undo, reason, member });
    return row;
  }

  control(member, id) {
    if (member.key === 'PasswordMode') {
      return el('select', { id, onchange: (event) => this.change(member, Number(event.target.value)) },
        ...passwordModes.map(([value, text]) => el('option', { value }, text)));
    }
    if (member.isSwitch) {
      return el('input', { id, type: 'checkbox', className: 'switch', role: 'switch', onchange: (event) => this.change(member, event.target.checked) });
    }
    return el('input', { id, type: 'number', min: 0, max: member.most ?? 2147483647, step: 1,
      oninput: (event) => this.change(member, event.target.value === '' ? NaN : Number(event.target.value)) });
  }

  baseOf(member) {
    return this.stored ? storedValue(member, this.stored) : freeValue(member);
  }

  valueOf(member) {
    return this.changes.has(member.key) ? this.changes.get(member.key) : this.baseOf(member);
  }

  change(member, value) {
    if (value === undefined || value === this.baseOf(member)) {
      this.changes.delete(member.key);
    } else {
      this.changes.set(member.key, value);
    }
    this.result.replaceChildren();
    this.draw();
  }

  resetAll() {
    this.changes.clear();
    this.result.replaceChildren();
    if (this.stored) {
      this.draw();
    } else {
      this.onGone(this);
    }
  }

  /// Takes what the watch stores now; what is not in the draft follows it.
  update(stored) {
    this.stored = stored;
    if (stored) {
      this.name = stored.account_name;
      for (const member of this.members) {
        if (this.changes.get(member.key) === this.baseOf(member)) {
          this.changes.delete(member.key);
        }
      }
    }
    this.draw();
  }

  draw() {
    this.title.textContent = `${this.name || 'without a name'} (account ${this.id})`;
    const count = this.stored ? this.changes.size : this.members.length;
    this.unsent.hidden = count === 0;
    this.unsent.textContent = this.stored ? `${count} unsent` : 'not sent yet';
    this.reset.hidden = count === 0;
    this.reset.textContent = this.stored ? 'Reset all' : 'Discard';
    this.remove.hidden = !this.stored;
    this.rows.forEach((row) => this.drawRow(row));
    this.drawSize();
  }

  drawRow({ row, control, undo, reason, member }) {
    const value = this.valueOf(member);
    const isChanged = this.changes.has(member.key);
    if (member.isSwitch) {
      control.checked = value;
    } else if (document.activeElement !== control || !isChanged) {
      control.value = String(Number.isNaN(value) ? '' : value);
    }
    row.classList.toggle('changed', isChanged);
    undo.hidden = !isChanged;
    const isWrong = !member.isSwitch && member.key !== 'PasswordMode' && !isInRange(member, value);
    control.setAttribute('aria-invalid', String(isWrong));
    reason.textContent = isWrong ? `A server sends ${rangeText(member)}; the watch is sent what you type.`
      : reasonText(member, this.id, latest('explanation'));
    reason.hidden = !reason.textContent;
  }

  message() {
    const policySet = Object.fromEntries(this.members.map((member) => [member.key, this.valueOf(member) || (member.isSwitch ? false : 0)]));
    return JSON.stringify({ msgId: 'email-itpolicy-ind', seqId: 1, param: [{ accountId: this.id, accountName: this.name, policySet }] });
  }

  drawSize() {
    const bytes = new TextEncoder().encode(this.message()).length;
    const most = latest('panel')?.largestMessage ?? 0;
    this.size.textContent = `The message has ${bytes} of ${most} bytes that the port takes.`;
    this.size.classList.toggle('error', bytes > most);
  }

  async preview() {
    this.send.disabled = true;
    this.result.replaceChildren(el('p', { className: 'preview' }, 'Trying it on a copy of the watch…'));
    const message = this.message();
    const result = await act({ action: 'whatif', message });
    this.send.disabled = false;
    const now = button('Send now', () => this.sendNow(message), { className: 'primary' });
    this.result.replaceChildren(el('div', { className: 'preview' },
      result.status === 0 ? forecastView(JSON.parse(result.output)) : el('p', { className: 'error' }, reasonOf(result)),
      el('div', { className: 'row' }, now, button('Cancel', () => this.result.replaceChildren()))));
    now.focus();
  }

  async sendNow(message) {
    this.result.replaceChildren(el('p', { className: 'preview' }, 'Sending…'));
    const result = await act({ action: 'send', message });
    this.result.replaceChildren(result.status === 0 ? el('p', { className: 'soft' }, result.output.trim() || 'Sent.')
      : el('p', { className: 'error' }, reasonOf(result)));
    this.send.focus();
  }

  async removeAccount() {
    const result = await act({ action: 'delete', account: this.id });
    if (result.status !== 0) {
      this.result.replaceChildren(el('p', { className: 'error' }, reasonOf(result)));
    }
  }

  /// Takes a policy set as a draft.
  fill(name, values) {
    this.name = name;
    for (const member of this.members) {
      this.changes.set(member.key, values(member));
    }
    this.update(this.stored);
  }

  filter(wanted) {
    let isAny = false;
    for (const { row, member } of this.rows.values()) {
      const isShown = `${member.key} ${member.label} ${member.column} ${member.says}`.toLowerCase().includes(wanted);
      row.hidden = !isShown;
      isAny = isAny || isShown;
    }
    return isAny;
  }
}

