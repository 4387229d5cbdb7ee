// Making elements, and what several views draw. Texts reach the page as text nodes only.

const kSvg = 'http://www.w3.org/2000/svg';

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('on')) {
      element.addEventListener(name.slice(2), value);
    } else if (typeof value === 'boolean') {
      element.toggleAttribute(name, value);
    } else if (value !== undefined) {
      element.setAttribute(name, value);
    }
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

// h('p', { class: 'x', onclick: f }, 'text', element, ...)
export const h = (name, attributes = {}, ...children) =>
  fill(document.createElement(name), attributes, children);
export const svg = (name, attributes = {}, ...children) =>
  fill(document.createElementNS(kSvg, name), attributes, children);

export const card = (title, ...children) =>
  h('section', { class: 'card' }, h('h2', {}, title), ...children);

export const facts = (pairs) =>
  h('dl', { class: 'facts' }, ...pairs.map(([name, value]) =>
    h('div', {}, h('dt', {}, name), h('dd', {}, value || '—'))));

export const badge = (kind, text) => h('span', { class: `badge ${kind}` }, text);

// A line that tells how something went; spoken by screen readers.
export function status() {
  const element = h('p', { class: 'status', role: 'status' });
  return {
    element,
    say: (kind, text) => {
      element.className = `status ${kind}`;
      element.textContent = text;
    },
  };
}

// Asks before something that cannot be taken back; resolves to the answer.
export function confirm(title, text, action) {
  return new Promise((resolve) => {
    const dialog = h('dialog', { 'aria-label': title },
      h('form', { method: 'dialog' },
        h('h2', {}, title), h('p', {}, text),
        h('div', { class: 'actions' },
          h('button', { value: '' }, 'Cancel'),
          h('button', { value: 'yes', class: 'danger' }, action))));
    dialog.addEventListener('close', () => {
      dialog.remove();
      resolve(dialog.returnValue === 'yes');
    });
    document.body.append(dialog);
    dialog.showModal();
  });
}

// Draws a line through samples [time, value], newest at the right edge, `span` milliseconds wide.
export function plot(drawing, samples, { span, low, high, now }) {
  const { clientWidth: width, clientHeight: height } = drawing;
  drawing.setAttribute('viewBox', `0 0 ${width} ${height}`);
  const known = samples.filter(([, value]) => Number.isFinite(value));
  const values = known.map(([, value]) => value);
  const bottom = low ?? Math.min(...values);
  const top = high ?? Math.max(...values);
  const x = (time) => (width - 4) * (1 - (now - time) / span);
  const part = (value) => (top > bottom ? (value - bottom) / (top - bottom) : 0.5);
  const y = (value) => height - 4 - (height - 8) * part(value);
  const points = known.map(([time, value]) => `${x(time).toFixed(1)},${y(value).toFixed(1)}`);
  const last = points.at(-1);
  const foot = (of) => `${of.split(',')[0]},${height}`;
  drawing.replaceChildren(...[
    last && svg('polygon', { points: [foot(points[0]), ...points, foot(last)], class: 'area' }),
    svg('polyline', { points: points.join(' '), class: 'line' }),
    last && svg('path', { d: `M${last}h0`, class: 'dot' }),
  ].filter(Boolean));
}
