import { button, el, labelled } from './dom.js';
import { act, on } from './server.js';
import { apps, keys, showStory } from './face.js';
import { eventText, stateAfter } from './story_state.js';

/// Records what happens on the watch, and steps through a recording with the face following.
class Story {
  constructor(panel) {
    this.events = [];
    this.step = 0;
    this.say = el('p', { className: 'soft', role: 'status' });
    this.start = button('Record', () => this.record(true), { className: 'primary' });
    this.stop = button('Stop', () => this.record(false));
    this.save = button('Save', () => this.download());
    this.file = el('input', { type: 'file', accept: '.jsonl,.json' });
    this.file.addEventListener('change', () => this.load(this.file.files[0]));
    this.list = el('ol', { className: 'steps' });
    this.player = el('section', { className: 'sheet', hidden: true }, el('h2', {}, 'The recording'),
      el('p', { className: 'soft' }, 'The face shows the recording. The watch itself is not touched.'),
      el('div', { className: 'row' }, button('Back', () => this.go(this.step - 1)), button('Next', () => this.go(this.step + 1), { className: 'primary' }),
        button('Next effect', () => this.go(this.nextEffect())), button('Close the recording', () => this.close())), this.list);
    panel.append(el('section', { className: 'sheet' }, el('h2', {}, 'Record'),
      el('p', { className: 'soft' }, 'A recording begins with the watch as it is. deskwatch replay plays it on a fresh watch and compares every effect.'),
      el('div', { className: 'row' }, this.start, this.stop, this.save), this.say),
    el('section', { className: 'sheet' }, el('h2', {}, 'Look at a recording'), labelled('File', this.file)), this.player);
    this.state = {};
    on('recording', (state) => this.show(state));
  }

  show(state) {
    this.state = state;
    this.start.disabled = state.on;
    this.stop.disabled = !state.on;
    this.save.disabled = state.on || state.lines === 0;
    this.say.className = state.error ? 'error' : 'soft';
    this.say.textContent = state.error ?? (state.on ? `Recording: ${state.lines} lines` : state.lines ? `${state.lines} lines are recorded.` : 'Nothing is recorded.');
  }

  record(isOn) {
    act({ action: isOn ? 'record' : 'record-stop' });
  }

  async download() {
    const text = await (await fetch('story.jsonl')).text();
    const address = URL.createObjectURL(new Blob([text], { type: 'application/octet-stream' }));
    el('a', { href: address, download: 'story.jsonl' }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
  }

  async load(file) {
    this.file.value = '';
    try {
      const [head, ...events] = (await file.text()).trim().split('\n').map((line) => JSON.parse(line));
      if (![1, 2].includes(head.recording)) {
        throw new Error('its first line is not the head of a recording');
      }
      this.head = head;
      this.events = events;
    } catch (error) {
      this.say.className = 'error';
      this.say.textContent = `${file.name} is not a recording: ${error.message}`;
      return;
    }
    this.player.hidden = false;
    this.list.replaceChildren(...this.events.map((event, index) => el('li', {}, button(eventText(event), () => this.go(index + 1)))));
    this.go(0);
  }

  nextEffect() {
    const next = this.events.findIndex((event, index) => index >= this.step && event.out);
    return next < 0 ? this.events.length : next + 1;
  }

  go(step) {
    this.step = Math.min(Math.max(step, 0), this.events.length);
    [...this.list.querySelectorAll('button')].forEach((entry, index) => {
      if (index + 1 === this.step) {
        entry.setAttribute('aria-current', 'step');
        this.list.scrollTop = entry.offsetTop - this.list.offsetTop - 80;
      } else {
        entry.removeAttribute('aria-current');
      }
    });
    showStory(stateAfter(this.head, this.events.slice(0, this.step), apps, keys));
  }

  close() {
    this.player.hidden = true;
    showStory(null);
  }
}

export function startStory(panel) {
  return new Story(panel);
}
