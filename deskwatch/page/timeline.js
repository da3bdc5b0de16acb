import { button, el, labelled } from './dom.js';
import { on } from './server.js';

const mostKept = 5000;
const mostShown = 500;
const drawEvery = 100;
const levels = 'VDIWEFS';
const kinds = ['request', 'answer', 'effect', 'launch', 'message', 'key', 'process', 'wipe', 'lock', 'event', 'fault', 'call', 'action', 'log'];

const timeText = (entry) => (entry.time ? new Date(entry.time).toTimeString().slice(0, 8) + entry.time.slice(19, 23) : 'before');

/// The parts of the service's log lines that every line has say nothing to a reader.
const shortText = (entry) => (entry.kind === 'log' ? entry.text.replace(/^([VDIWEFS])\/TESK_CONSUMER\( *\d+\): /, '$1 ') : entry.text);

function content(entry) {
  return entry.detail === null ? entry.text : JSON.stringify(entry.detail, null, 2);
}

function row(entry) {
  const item = el('li', { className: `kind-${entry.kind}${entry.level ? ` level-${entry.level}` : ''}` });
  const toggle = el('button', { type: 'button', 'aria-expanded': 'false', onclick: () => {
    const isOpen = toggle.getAttribute('aria-expanded') === 'true';
    toggle.setAttribute('aria-expanded', String(!isOpen));
    if (isOpen) {
      item.querySelector('pre').remove();
    } else {
      item.append(el('pre', {}, content(entry)));
    }
  } }, el('time', {}, timeText(entry)), el('span', { className: 'kind' }, entry.kind), el('span', { className: 'text' }, shortText(entry)));
  item.append(toggle);
  return item;
}

class Timeline {
  constructor(panel) {
    this.entries = [];
    this.waiting = [];
    this.lost = 0;
    this.isFollowing = true;
    this.missed = 0;
    this.lastDrawn = 0;
    this.build(panel);
    on('entry', (entry) => this.take(entry));
    on('lost', (count) => this.lose(count));
  }

  build(panel) {
    this.search = el('input', { type: 'search', placeholder: 'for example minimum-length', 'aria-label': 'Search the time line' });
    this.level = el('select', { 'aria-label': 'Lowest level of log lines' },
      ...['all log lines', 'I and higher', 'W and higher', 'E and higher'].map((text, index) => el('option', { value: ['', 'I', 'W', 'E'][index] }, text)));
    this.level.value = 'W';
    this.kinds = new Set(kinds);
    this.list = el('ol', { className: 'entries', tabIndex: 0, 'aria-label': 'What happened' });
    this.newer = button('', () => this.follow(), { hidden: true });
    this.count = el('p', { className: 'soft' });
    const boxes = kinds.map((kind) => el('label', {}, el('input', { type: 'checkbox', checked: true, onchange: (event) => {
      event.target.checked ? this.kinds.add(kind) : this.kinds.delete(kind);
      this.redraw();
    } }), kind));
    this.search.addEventListener('input', () => this.redraw());
    this.level.addEventListener('change', () => this.redraw());
    this.list.addEventListener('scroll', () => this.onScroll());
    panel.append(el('div', { className: 'row' }, labelled('Search', this.search, { className: 'grow' }), labelled('Log', this.level)),
      el('fieldset', { className: 'kinds' }, el('legend', { className: 'soft' }, 'Kinds'), ...boxes),
      this.list, el('div', { className: 'row middle' }, this.count, this.newer));
    addEventListener('view', () => this.redraw());
    this.redraw();
  }

  isWanted(entry) {
    const wanted = this.search.value.trim().toLowerCase();
    const isHighEnough = entry.kind !== 'log' || !this.level.value || levels.indexOf(entry.level ?? 'V') >= levels.indexOf(this.level.value);
    return this.kinds.has(entry.kind) && isHighEnough
      && (!wanted || `${entry.kind} ${entry.text} ${JSON.stringify(entry.detail)}`.toLowerCase().includes(wanted));
  }

  take(entry) {
    this.entries.push(entry);
    if (this.entries.length > mostKept) {
      this.entries.splice(0, this.entries.length - mostKept);
      this.lost += 1;
    }
    if (this.waiting.push(entry) === 1) {
      setTimeout(() => this.drawWaiting(), this.lastDrawn + drawEvery - performance.now()); // the first of them at once
    }
  }

  lose(count) {
    this.lost += count;
    this.showCount();
  }

  drawWaiting() {
    this.lastDrawn = performance.now();
    const wanted = this.waiting.slice(-mostShown).filter((entry) => this.isWanted(entry));
    this.waiting = [];
    if (this.list.closest('[hidden]')) {
      return; // drawn when it is looked at
    }
    if (!this.isFollowing) {
      this.missed += wanted.length;
    } else if (wanted.length) {
      this.list.querySelector('.none')?.remove();
      this.list.append(...wanted.map(row));
      while (this.list.childElementCount > mostShown) {
        this.list.firstElementChild.remove();
      }
      this.list.scrollTop = this.list.scrollHeight;
    }
    this.showCount();
  }

  redraw() {
    const wanted = this.entries.filter((entry) => this.isWanted(entry)).slice(-mostShown);
    this.list.replaceChildren(...wanted.map(row));
    if (!wanted.length) {
      this.list.append(el('li', { className: 'none empty' }, this.entries.length ? 'Nothing of that kind happened.' : 'Nothing happened yet. Send a policy.'));
    }
    this.isFollowing = true;
    this.missed = 0;
    this.list.scrollTop = this.list.scrollHeight;
    this.showCount();
  }

  follow() {
    this.redraw();
    this.list.focus();
  }

  /// Whoever scrolls up reads; what comes then waits.
  onScroll() {
    const isAtEnd = this.list.scrollHeight - this.list.scrollTop - this.list.clientHeight < 8;
    if (isAtEnd && this.missed) {
      this.redraw();
    }
    this.isFollowing = isAtEnd;
  }

  showCount() {
    this.count.textContent = `${this.entries.length} kept${this.lost ? `, ${this.lost} older ones are gone` : ''}`;
    this.newer.hidden = !this.missed;
    this.newer.textContent = `Show ${this.missed} new`;
  }
}

export function startTimeline(panel) {
  return new Timeline(panel);
}
