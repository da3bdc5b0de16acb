import { button, el, labelled } from './dom.js';
import { act, on, reasonOf } from './server.js';

/// The accounts at servers: connect one, ask its server again, remove it. A password leaves the page with the action alone.
class Servers {
  constructor() {
    this.url = el('input', { type: 'text', placeholder: 'https://mail.example.com', inputMode: 'url', required: true });
    this.user = el('input', { type: 'text', autocomplete: 'off', required: true });
    this.password = el('input', { type: 'password', autocomplete: 'off', required: true });
    this.result = el('div', { role: 'status' });
    this.list = el('ul', { className: 'notes' });
    this.connect = el('button', { type: 'submit' }, 'Connect');
    const form = el('form', { className: 'row', onsubmit: (event) => {
      event.preventDefault();
      this.run(this.connect, { action: 'connect', server: this.url.value.trim(), user: this.user.value, password: this.takePassword() });
    } }, labelled('Address of the server', this.url, { className: 'grow' }), labelled('User', this.user),
    labelled('Password', this.password), this.connect);
    this.root = el('details', { className: 'sheet' }, el('summary', {}, 'Accounts at an Exchange ActiveSync server'),
      el('p', { className: 'soft' }, 'The server’s policy goes to the watch. When the wearer has answered, refresh tells the server.'),
      form, this.result, this.list);
    this.known = '';
    on('status', (status) => this.followAccounts(status));
    this.draw();
  }

  /// Each action wants the password anew: the page keeps none.
  takePassword() {
    const password = this.password.value;
    this.password.value = '';
    return password;
  }

  followAccounts(status) {
    const known = JSON.stringify([status.accounts.map((account) => account.account_id), status.watch]);
    if (known !== this.known) {
      this.known = known;
      this.draw();
    }
  }

  async run(pressed, action) {
    pressed.disabled = true;
    const result = await act(action);
    pressed.disabled = false;
    this.result.replaceChildren(el('p', { className: result.status === 0 ? 'soft' : 'error' },
      result.status === 0 ? result.output.trim() || 'Done.' : [result.output.trim(), reasonOf(result)].filter(Boolean).join('\n')));
    this.draw();
  }

  refresh(id, pressed) {
    if (!this.password.value) {
      this.result.replaceChildren(el('p', { className: 'error' }, 'Type the password of this account first.'));
      this.password.focus();
      return;
    }
    this.run(pressed, { action: 'refresh', account: id, password: this.takePassword() });
  }

  row({ account, name, user, server, version, policy }) {
    const refresh = button('Refresh', () => this.refresh(account, refresh), { 'aria-label': `Refresh account ${account}` });
    const remove = button('Disconnect', () => this.run(remove, { action: 'disconnect', account }),
      { className: 'danger', 'aria-label': `Disconnect account ${account}` });
    return el('li', {}, el('div', { className: 'row middle' },
      el('p', { className: 'grow' }, `${account}: ${name}, ${policy}`, el('br'),
        el('span', { className: 'soft' }, `${user} at ${server}, version ${version}`)), refresh, remove));
  }

  async draw() {
    const result = await act({ action: 'servers' }, false);
    const accounts = result.status === 0 ? JSON.parse(result.output) : [];
    this.list.replaceChildren(...accounts.map((account) => this.row(account)));
    this.root.open = this.root.open || accounts.length > 0;
  }
}

export const serversView = () => new Servers().root;
