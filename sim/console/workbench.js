// Any request, its raw reply, and what the unit ran for it.
import { card, h, status } from './page.js';
import { description, requestText, trace } from './unit.js';

const kMethods = [['GET', 'GET'], ['form', 'Form (POST)'], ['upload', 'Upload (POST)']];
const kRan = [['commands', 'Commands given to the shell'], ['clish', 'Scripts given to clish'],
  ['tools', 'Calls of the hardware’s tools'], ['i2c', 'Transfers on the I2C bus'],
  ['files', 'Files'], ['errors', 'Standard error']];

// The text as nodes, control characters but line feeds as what they are called.
const visible = (text) => text.split(/([\0-\x09\x0b-\x1f\x7f])/).map((part, i) => i % 2 === 0 ? part
  : h('i', {}, part === '\r' ? '\\r' : `\\x${part.charCodeAt(0).toString(16).padStart(2, '0')}`));
const block = (text) => h('pre', { tabindex: 0 }, ...visible(text));

function example({ number, actions, parameters = [] }, storing) {
  const sent = parameters.filter(({ reading }) => storing || reading || !('0' in actions));
  return requestText(number, storing ? 1 : 0, sent.map(({ name }) => [name, '']));
}

function ran(name, title, text) {
  const ends = name === 'commands' || name === 'clish' ? '\0' : '\n';
  const items = text.split(ends).filter(Boolean);
  return items.length ? [h('h3', {}, title), h('ol', { class: 'ran' },
    ...items.map((item) => h('li', {}, h('code', {}, ...visible(item.trimEnd())))))] : [];
}

function account(line, body, { reply, status: exit, ...parts }, ms) {
  const lists = kRan.flatMap(([name, title]) => ran(name, title, parts[name] ?? ''));
  return [
    card('Request', block(body ? `${line}\n\n${body}` : line)),
    card('Reply', h('p', { class: 'muted small' },
      `${new Blob([reply]).size} bytes · exit status ${exit.trim()} · ${ms} ms with the recorder`),
    reply ? block(reply) : h('p', {}, '(no reply)')),
    h('section', { class: 'card wide', id: 'ran' }, h('h2', {}, 'What the unit ran'),
      ...(lists.length ? lists : [h('p', { class: 'muted' }, 'Nothing.')])),
  ];
}

export function open(page) {
  const line = status();
  const method = h('select', { id: 'method' },
    ...kMethods.map(([value, name]) => h('option', { value }, name)));
  const text = h('input', {
    id: 'request', value: 'cmd_id=25&action=0', autocomplete: 'off', spellcheck: 'false',
  });
  const file = h('input', { type: 'file', 'aria-label': 'File' });
  const fileField = h('div', { class: 'field', hidden: true }, file);
  const pick = h('select', { id: 'pick' }, h('option', { value: '' }, 'Fill in …'),
    ...description.commands.flatMap((entry) => [false, true]
      .filter((storing) => !storing || '1' in entry.actions)
      .map((storing) => h('option', { value: example(entry, storing) },
        `${entry.number} ${entry.name}${storing ? ', action 1' : ''}`))));
  const bar = h('progress', { max: 1, value: 0, hidden: true, 'aria-label': 'Upload' });
  const results = h('div', { class: 'grid results' });
  pick.addEventListener('change', () => {
    text.value = pick.value || text.value;
    pick.value = '';
    text.focus();
  });
  method.addEventListener('change', () => {
    fileField.hidden = method.value !== 'upload';
  });
  const field = (label, input, more = '') =>
    h('div', { class: `field ${more}` }, h('label', { for: input.id }, label), input);
  page.append(h('form', {
    class: 'card wide bench',
    onsubmit: async (event) => {
      event.preventDefault();
      const start = performance.now();
      const [how, query] = [method.value, text.value];
      if (how === 'upload' && !file.files[0]) {
        return line.say('bad', 'Choose a file.');
      }
      line.say('', 'Waiting for the unit …');
      bar.hidden = how !== 'upload';
      try {
        const { line: request, parts } = await trace(how, query, file.files[0], (part) => {
          bar.value = part;
        });
        const ms = Math.round(performance.now() - start);
        const body = {
          GET: '', form: query, upload: `(${file.files[0]?.name} as multipart/form-data)`,
        }[how];
        results.replaceChildren(...account(request, body, parts, ms));
        line.say('', '');
      } catch (error) {
        line.say('bad', `No account: ${error.message ?? 'the upload broke off'}.`);
      }
      bar.hidden = true;
      return undefined;
    },
  }, field('Command', pick), field('Method', method), field('Request', text, 'long'), fileField,
  h('div', { class: 'actions' }, h('button', { class: 'primary' }, 'Send')), bar, line.element),
  results);
  return {};
}
