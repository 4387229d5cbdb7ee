// The PON counters (command 8): total, change per second, and how it went.
import { h, plot, svg } from './page.js';
import { entryOf, keysOf, read } from './unit.js';

const kSpan = 2 * 60 * 1000;
const kGroups = [['rx', 'Received'], ['tx', 'Transmitted'], ['swRe', 'Registration'],
  ['sw', 'Counted by software']];
const before = {}; // by key: [time, total]
const rates = {}; // by key: samples

const groupOf = (key) => kGroups.findIndex(([prefix]) => key.startsWith(prefix));
const kOrder = keysOf(8).sort((a, b) => groupOf(a) - groupOf(b));
const grouped = (number) => number.toLocaleString('en').replaceAll(',', ' ');

function row(key) {
  const { label, unit } = entryOf(8, key);
  const total = h('td', { class: 'number' });
  const rate = h('td', { class: 'number' });
  const line = svg('svg', { class: 'plot', 'aria-hidden': 'true' });
  const element = h('tr', { id: key },
    h('th', { scope: 'row' }, label, h('code', {}, key)), total, rate, h('td', {}, line));
  return {
    element,
    show(text = '') {
      const now = Date.now();
      const value = text === '' ? NaN : Number(text); // decimal or 0x...
      const [then, last] = before[key] ?? [];
      before[key] = [now, value];
      total.textContent = Number.isNaN(value) ? text || '—' : grouped(value);
      total.title = text;
      let change = NaN;
      if (then !== undefined && now > then) {
        change = (value - last) / ((now - then) / 1000);
        rates[key] = [...rates[key] ?? [], [now, change]].filter(([time]) => now - time < kSpan);
      }
      rate.textContent = Number.isNaN(change) ? '' : change < 0 ? 'restarted'
        : `${grouped(Math.round(change))} ${unit === 'frames' ? 'f' : 'B'}/s`;
      rate.className = change ? 'number moving' : 'number';
      plot(line, rates[key] ?? [], { span: kSpan, low: 0, now });
    },
  };
}

export function open(page) {
  const rows = Object.fromEntries(kOrder.map((key) => [key, row(key)]));
  const bodies = kGroups.map(([, title], group) => h('tbody', {},
    h('tr', { class: 'group' }, h('th', { colspan: 4, scope: 'rowgroup' }, title)),
    ...kOrder.filter((key) => groupOf(key) === group).map((key) => rows[key].element)));
  page.append(h('section', { class: 'card wide' }, h('table', { class: 'counters' },
    h('thead', {}, h('tr', {}, ...['Counter', 'Total', 'Change', '2 min'].map((text) =>
      h('th', { scope: 'col' }, text)))), ...bodies)));
  return {
    every: 2000,
    async refresh() {
      const reply = (await read(8)).rows[0] ?? {};
      kOrder.forEach((key) => rows[key].show(reply[key]));
    },
  };
}
