// The frame: which view is shown, and the notice when the unit does not answer.
import * as overview from './overview.js';
import * as optics from './optics.js';
import * as counters from './counters.js';
import * as settings from './settings.js';
import * as maintenance from './maintenance.js';
import * as workbench from './workbench.js';
import { command, onAnswering, ping, read } from './unit.js';
import { h } from './page.js';

const kViews = { overview, optics, counters, settings, maintenance, workbench };
const main = document.querySelector('main');
const notice = document.getElementById('notice');
let shown = { refresh: null, timer: 0, name: '' };

// Runs the view's refresh now and then again, each time when the one before has ended; not while
// the page is hidden or the unit does not answer.
async function tick(view) {
  clearTimeout(view.timer);
  if (view !== shown || !view.refresh) {
    return;
  }
  if (!document.hidden && !view.busy) {
    view.busy = true;
    try {
      await view.refresh();
    } catch (error) {
      await ping();
      console.info(error.message);
    }
    view.busy = false;
  }
  clearTimeout(view.timer);
  if (view.every) {
    view.timer = setTimeout(tick, view.every, view);
  }
}

function show() {
  const name = location.hash.slice(1).split('/')[0];
  if (name === 'view') {
    return; // the link that skips the navigation
  }
  const module = kViews[name] ?? overview;
  const link = document.querySelector(`nav a[href="#${kViews[name] ? name : 'overview'}"]`);
  for (const other of document.querySelectorAll('nav a')) {
    other.toggleAttribute('aria-current', other === link);
  }
  link.setAttribute('aria-current', 'page');
  link.scrollIntoView({ block: 'nearest', inline: 'nearest' });
  document.title = `${link.textContent} · ONU console`;
  clearTimeout(shown.timer);
  const page = h('div', { class: 'page' }, h('h1', {}, link.textContent));
  main.replaceChildren(page);
  shown = { ...module.open(page), timer: 0, busy: false };
  tick(shown);
}

let missing = 0;
onAnswering((answers) => {
  clearTimeout(missing);
  notice.hidden = false;
  notice.className = answers ? 'good' : 'bad';
  notice.textContent = answers ? 'The unit is back.'
    : 'The unit does not answer. Trying again every two seconds.';
  const again = async () => {
    missing = (await ping()) ? missing : setTimeout(again, 2000);
  };
  missing = setTimeout(answers ? () => { notice.hidden = true; } : again, answers ? 4000 : 2000);
  if (answers) {
    tick(shown);
  }
});
document.addEventListener('visibilitychange', () => tick(shown));
addEventListener('hashchange', show);
show();

read(command(2).number).then(({ rows }) => {
  document.getElementById('model').textContent = rows[0]?.type || 'ONU';
}, () => {});
