import { button, el } from './dom.js';
import { act, connect, latest, on, reasonOf } from './server.js';
import { startFace } from './face.js';
import { startAccounts } from './accounts.js';
import { startWhy } from './why.js';
import { startTimeline } from './timeline.js';
import { startTrouble } from './trouble.js';
import { startStory } from './story.js';

const byId = (id) => document.getElementById(id);

function startTabs() {
  const tabs = [...document.querySelectorAll('[role="tab"]')];
  const select = (tab) => {
    for (const other of tabs) {
      const isChosen = other === tab;
      other.setAttribute('aria-selected', String(isChosen));
      other.tabIndex = isChosen ? 0 : -1;
      byId(other.getAttribute('aria-controls')).hidden = !isChosen;
    }
    dispatchEvent(new CustomEvent('view', { detail: tab.getAttribute('aria-controls') }));
  };
  tabs.forEach((tab, index) => {
    tab.addEventListener('click', () => select(tab));
    tab.addEventListener('keydown', (event) => {
      const step = { ArrowRight: 1, ArrowLeft: -1, Home: -index, End: tabs.length - 1 - index }[event.key];
      if (step !== undefined) {
        event.preventDefault();
        const next = tabs[(index + step + tabs.length) % tabs.length];
        select(next);
        next.focus();
      }
    });
  });
}

function showService() {
  const watch = latest('watch');
  const status = latest('status');
  const chip = byId('service');
  if (!watch) {
    return;
  }
  const isRunning = watch.booted && status?.serviceRunning;
  const idle = isRunning && status.idleExit;
  chip.className = `chip ${isRunning ? 'good' : ''}`;
  chip.textContent = !watch.booted ? 'switched off' : !isRunning ? 'the service does not run'
    : !idle ? 'the service runs' : `the service ends ${idle.exact ? 'in' : 'within'} ${idle.seconds} s`;
  byId('folder').textContent = watch.folder;
  byId('power').hidden = !watch.booted;
}

const connections = {
  lost: ['The connection to the panel is lost. This page shows what was before and comes back by itself.'],
  bye: ['The panel has ended. This page comes back when its process does: an address with a new token is printed in the terminal.'],
  parked: ['Paused here: four pages of this watch are open.', 'Go on here'],
};

function showConnection(state) {
  const notice = byId('connection');
  const [text, action] = connections[state] ?? [];
  notice.hidden = !text;
  notice.replaceChildren(...(text ? [el('span', {}, text)] : []), ...(action ? [button(action, connect)] : []));
  document.body.dataset.connection = state;
}

function showCommand(acted) {
  if (acted.command) {
    byId('command').textContent = acted.command;
    byId('copy').disabled = false;
  }
}

async function copyCommand() {
  await navigator.clipboard.writeText(byId('command').textContent);
  byId('announce').textContent = 'The command is copied.';
}

startTabs();
startFace();
startAccounts(byId('accounts'));
startWhy(byId('why'));
startTimeline(byId('timeline'));
startTrouble(byId('trouble'));
startStory(byId('story'));
on('watch', showService);
on('status', showService);
on('connection', showConnection);
on('acted', showCommand);
byId('copy').addEventListener('click', copyCommand);
byId('power').addEventListener('click', async () => {
  const result = await act({ action: 'off' });
  byId('announce').textContent = result.status === 0 ? 'The watch is off.' : reasonOf(result);
});
connect();
