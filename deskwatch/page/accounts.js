import { button, el, labelled } from './dom.js';
import { act, latest, on, reasonOf } from './server.js';
import { elementSays, givenValue, loadMembers } from './members.js';
import { AccountCard } from './account_card.js';
import { forecastView } from './forecast.js';
import { serversView } from './servers.js';

const mostFile = 500000;

class Accounts {
  constructor(panel) {
    this.panel = panel;
    this.cards = new Map();
    this.filter = el('input', { type: 'search', placeholder: 'for example wifi', 'aria-label': 'Filter the members' });
    this.filter.addEventListener('input', () => this.applyFilter());
    this.name = el('input', { type: 'text', value: 'alice@example.com', maxLength: 320 });
    this.presets = el('select', {}, el('option', { value: '' }, 'Choose…'));
    this.file = el('input', { type: 'file', multiple: true });
    this.result = el('div', { role: 'status' });
    this.list = el('div', { className: 'cards' });
    this.build();
  }

  build() {
    this.filterRow = el('div', { className: 'row' }, labelled('Filter the members', this.filter, { className: 'grow' }));
    const add = button('Add account', () => this.addAccount());
    this.presets.addEventListener('change', () => this.loadPreset());
    this.file.addEventListener('change', () => this.loadFiles([...this.file.files]));
    this.panel.append(el('section', { className: 'sheet' },
      el('div', { className: 'row' }, labelled('Name of a new account', this.name, { className: 'grow' }), add,
        labelled('Preset', this.presets), labelled('Message or provisioning document', this.file)),
      el('p', { className: 'soft' }, 'Files may also be dropped anywhere on this page. Nothing is sent before you press Send.'), this.result),
    serversView(), this.filterRow, this.list);
    this.acceptDrops();
  }

  acceptDrops() {
    const isFile = (event) => [...(event.dataTransfer?.types ?? [])].includes('Files');
    addEventListener('dragover', (event) => {
      if (isFile(event)) {
        event.preventDefault();
        this.panel.classList.add('dropping');
      }
    });
    addEventListener('dragleave', () => this.panel.classList.remove('dropping'));
    addEventListener('drop', (event) => {
      this.panel.classList.remove('dropping');
      if (isFile(event)) {
        event.preventDefault();
        document.getElementById('tab-accounts').click();
        this.loadFiles([...event.dataTransfer.files]);
      }
    });
  }

  start(members) {
    this.members = members;
    on('panel', (panel) => this.presets.replaceChildren(el('option', { value: '' }, 'Choose…'),
      ...panel.samples.map((name) => el('option', { value: name }, name.replace(/\.(json|xml)$/, '')))));
    on('status', (status) => this.update(status));
    on('explanation', () => this.cards.forEach((card) => card.draw()));
  }

  update(status) {
    const stored = new Map(status.accounts.map((account) => [account.account_id, account]));
    for (const [id, card] of this.cards) {
      if (!stored.has(id) && card.stored) {
        this.drop(card);
      }
    }
    for (const [id, account] of stored) {
      this.cardOf(id).update(account);
    }
    this.showEmpty();
  }

  cardOf(id) {
    if (!this.cards.has(id)) {
      const card = new AccountCard(this.members, id, (gone) => this.drop(gone));
      this.cards.set(id, card);
      this.list.append(card.root);
      card.filter(this.filter.value.trim().toLowerCase());
    }
    return this.cards.get(id);
  }

  drop(card) {
    this.cards.delete(card.id);
    card.root.remove();
    this.showEmpty();
  }

  showEmpty() {
    this.list.querySelector('.empty')?.remove();
    this.filterRow.hidden = !this.cards.size;
    if (!this.cards.size) {
      this.list.append(el('p', { className: 'empty' }, 'No account is on this watch. Choose a preset, drop a file, or add an account.'));
    }
  }

  applyFilter() {
    const wanted = this.filter.value.trim().toLowerCase();
    this.cards.forEach((card) => card.filter(wanted));
  }

  newId() {
    return Math.max(0, ...this.cards.keys()) + 1;
  }

  addAccount() {
    const card = this.cardOf(this.newId());
    card.name = this.name.value;
    card.draw();
    this.showEmpty();
    this.reveal(card);
  }

  reveal(card) {
    card.root.scrollIntoView({ block: 'start' });
    card.send.focus({ preventScroll: true });
  }

  say(...content) {
    this.result.replaceChildren(...content);
  }

  async loadPreset() {
    const name = this.presets.value;
    this.presets.value = '';
    if (name) {
      this.load(name, await (await fetch(`samples/${name}`)).text());
    }
  }

  async loadFiles(files) {
    this.file.value = '';
    for (const file of files) {
      if (file.size > mostFile) {
        this.say(el('p', { className: 'error' }, `${file.name} has ${file.size} bytes; the page takes ${mostFile}.`));
      } else {
        await this.load(file.name, await file.text());
      }
    }
  }

  /// A message becomes a draft for each of its accounts; what is not JSON is imported as the command does.
  async load(name, text) {
    this.say();
    let message;
    try {
      message = JSON.parse(text);
    } catch (error) {
      if (text.trimStart().startsWith('{')) {
        this.offer(name, text, `${name} is not valid JSON: ${error.message}`);
        return;
      }
      await this.importDocument(name, text);
      return;
    }
    const isPolicy = message?.msgId === 'email-itpolicy-ind' && Array.isArray(message.param)
      && message.param.every((account) => Number.isInteger(account?.accountId) && account.accountId > 0 && account.policySet);
    if (isPolicy) {
      this.loadAccounts(message.param);
    } else {
      this.offer(name, text, `${name} is a message of the kind ${message?.msgId ?? 'unknown'}, which no card can show. It can be sent as it is.`);
    }
  }

  loadAccounts(accounts) {
    let last = null;
    for (const { accountId, accountName, policySet } of accounts) {
      last = this.cardOf(accountId);
      last.fill(String(accountName ?? ''), (member) => givenValue(member, policySet));
    }
    this.showEmpty();
    if (last) {
      this.reveal(last);
    }
  }

  async importDocument(name, text) {
    const result = await act({ action: 'import', document: text, account: this.newId(), name: this.name.value });
    if (result.status !== 0) {
      this.say(el('p', { className: 'error' }, `${name}: ${reasonOf(result)}`));
      return;
    }
    this.loadAccounts(JSON.parse(result.output).param);
    this.say(this.importReport(name, result.errors));
  }

  importReport(name, report) {
    let elements = [];
    try {
      elements = JSON.parse(report).elements;
    } catch {
      return el('pre', {}, report);
    }
    const left = elements.filter((element) => element.member === null);
    return el('div', { className: 'notes' }, el('p', {}, `${name}: ${elements.length - left.length} of ${elements.length} elements reach the watch.`),
      el('ul', { className: 'notes' }, ...left.map((element) => el('li', {}, el('code', {}, element.element), ` ${element.watch}. ${elementSays(element.element)}`))));
  }

  /// A text that is sent as it is.
  offer(name, text, why) {
    const place = el('div', { className: 'preview' }, el('p', {}, why), el('div', { className: 'row' },
      button('What would change?', async () => {
        const result = await act({ action: 'whatif', message: text });
        place.prepend(result.status === 0 ? forecastView(JSON.parse(result.output)) : el('p', { className: 'error' }, reasonOf(result)));
      }),
      button(`Send ${name}`, async () => {
        const result = await act({ action: 'send', message: text });
        this.say(el('p', { className: result.status === 0 ? 'soft' : 'error' }, result.status === 0 ? result.output.trim() || 'Sent.' : reasonOf(result)));
      }, { className: 'primary' }), button('Cancel', () => this.say())));
    this.say(place);
  }
}

export async function startAccounts(panel) {
  const accounts = new Accounts(panel);
  accounts.start(await loadMembers());
  if (!latest('status')) {
    accounts.showEmpty();
  }
}
