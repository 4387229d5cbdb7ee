// The optical module's readings (command 3): gauges with the usual limits, and the last minutes.
import { badge, h, plot, svg } from './page.js';
import { entryOf, read } from './unit.js';

const kSpan = 5 * 60 * 1000;
const kLeastSpan = 60 * 1000;
// Ends of the scale; where a warning and an alarm are usual in a module of the class 1000BASE-PX20.
// `least` is the smallest height of the plot.
const kReadings = [
  { key: 'rx_opt_power', scale: [-36, 0], warning: [-24, -6], alarm: [-27, -3], least: 1 },
  { key: 'tx_opt_power', scale: [-6, 8], warning: [-1, 4], alarm: [-3, 6], least: 1 },
  { key: 'temp', scale: [-50, 110], warning: [-20, 85], alarm: [-40, 95], least: 2 },
  { key: 'voltage', scale: [2.7, 3.9], warning: [3.13, 3.47], alarm: [2.97, 3.63], least: 0.1 },
  { key: 'bias', scale: [0, 100], warning: [2, 70], alarm: [1, 90], least: 1 },
];
const samples = Object.fromEntries(kReadings.map(({ key }) => [key, []]));

const signed = (text) => text.replace('-', '−');
const outside = (value, [low, high]) => value < low || value > high;
function judge(value, { warning, alarm }) {
  if (Number.isNaN(value)) {
    return ['', 'no value'];
  }
  if (value === -Infinity) {
    return ['bad', 'no light'];
  }
  if (outside(value, alarm)) {
    return ['bad', 'alarm'];
  }
  return outside(value, warning) ? ['warn', 'warning'] : ['good', 'normal'];
}

// A gauge of 240 degrees, open below.
const kRadius = 70;
function point(part) {
  const angle = (150 + 240 * Math.min(Math.max(part, 0), 1)) * Math.PI / 180;
  return [100 + kRadius * Math.cos(angle), 86 + kRadius * Math.sin(angle)];
}
function arc(from, to, kind) {
  const large = to - from > 0.75 ? 1 : 0;
  const d = `M${point(from)} A${kRadius} ${kRadius} 0 ${large} 1 ${point(to)}`;
  return svg('path', { d, class: kind });
}
function gauge({ scale, warning, alarm }) {
  const part = (value) => (value - scale[0]) / (scale[1] - scale[0]);
  const ends = [scale[0], alarm[0], warning[0], warning[1], alarm[1], scale[1]].map(part);
  const label = (at, text) => {
    const [x, y] = point(part(at));
    return svg('text', { x: 100 + (x - 100) * 1.22, y: 86 + (y - 86) * 1.2 + 3 }, text);
  };
  const mark = svg('circle', { r: 6.5, class: 'mark' });
  const drawing = svg('svg', { viewBox: '0 0 200 140', class: 'gauge', 'aria-hidden': 'true' },
    ...['bad', 'warn', 'good', 'warn', 'bad'].map((kind, i) => arc(ends[i], ends[i + 1], kind)),
    label(alarm[0], String(alarm[0])), label(alarm[1], String(alarm[1])), mark);
  const move = (value) => {
    const [cx, cy] = point(part(value));
    mark.setAttribute('cx', cx);
    mark.setAttribute('cy', cy);
    mark.toggleAttribute('hidden', Number.isNaN(value));
  };
  return { drawing, move };
}

function reading(entry) {
  const { label, unit } = entryOf(3, entry.key);
  const { drawing, move } = gauge(entry);
  const figure = h('strong');
  const state = h('p');
  const line = svg('svg', { class: 'plot', 'aria-hidden': 'true' });
  const range = h('p', { class: 'muted small' });
  const element = h('section', { class: 'card reading' }, h('h2', {}, label),
    h('div', { class: 'dial' }, drawing,
      h('p', { class: 'figure' }, figure, h('span', {}, unit)), state),
    h('div', { class: 'history' }, line, range));
  return {
    element,
    show(text) {
      const value = text ? Number(text.split(' ')[0].replace('inf', 'Infinity')) : NaN;
      const now = Date.now();
      const kept = samples[entry.key].filter(([time]) => now - time < kSpan);
      kept.push([now, value]);
      samples[entry.key] = kept;
      figure.textContent = Number.isFinite(value) ? signed(text.split(' ')[0]) : '—';
      state.replaceChildren(badge(...judge(value, entry)));
      move(value);
      const span = Math.max(kLeastSpan, now - kept[0][0]);
      const known = kept.map((sample) => sample[1]).filter(Number.isFinite);
      const [low, high] = [Math.min(...known), Math.max(...known)];
      const slack = Math.max(0, (entry.least - (high - low)) / 2);
      plot(line, kept, { span, low: low - slack, high: high + slack, now });
      const minutes = Math.ceil(span / 60000);
      range.textContent = known.length
        ? `Last ${minutes} min: ${signed(low.toFixed(2))} to ${signed(high.toFixed(2))} ${unit}`
        : 'No values';
    },
  };
}

export function open(page) {
  const readings = kReadings.map(reading);
  page.append(h('p', { class: 'muted' },
    'Limits as usual for a 1000BASE-PX20 module; read every 2 s while the page is seen.'),
  h('div', { class: 'grid dials' }, ...readings.map(({ element }) => element)));
  return {
    every: 2000,
    async refresh() {
      const row = (await read(3)).rows[0] ?? {};
      kReadings.forEach(({ key }, i) => readings[i].show(row[key]));
    },
  };
}
