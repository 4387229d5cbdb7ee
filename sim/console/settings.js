// A form for every command that stores, made from the description: reads, shows what differs,
// stores, and says that it is stored only when the unit reads it back.
import { h, status } from './page.js';
import { command, description, read, requestText, store, valuesOf } from './unit.js';
import { unitReads } from './reply.js';

const kStoring = description.commands.filter(({ actions }) =>
  Object.values(actions).includes('store'));

export function failure(number, { status: code, message, bare, body }) {
  const what = code === 0 ? '' : code === 200 ? bare ?? body : `${code} ${message}`;
  const meaning = command(number).failures?.[what] ?? description.pages[what];
  const said = what === '' ? 'no reply' : what.trim();
  return `The unit answers “${said}”${meaning ? `: ${meaning}` : ''}.`;
}

function field(parameter) {
  const values = valuesOf(parameter);
  const id = `f${field.count = (field.count ?? 0) + 1}`;
  const input = values
    ? h('select', { id, name: parameter.name },
      ...Object.entries(values).map(([value, text]) => h('option', { value }, text)))
    : h('input', { id, name: parameter.name, autocomplete: 'off', spellcheck: 'false',
      type: parameter.form === 'password' ? 'password' : 'text',
      inputmode: parameter.form === 'number' ? 'numeric' : undefined });
  const was = h('small', { class: 'was' });
  const hint = [parameter.unit, parameter.help].filter(Boolean).join(', ');
  const element = h('div', { class: 'field' }, h('label', { for: id }, parameter.label), input,
    hint ? h('small', { class: 'muted' }, hint) : null, was);
  return {
    parameter, input, element,
    known: undefined, // as the unit last told it
    fill(text) {
      if (values && text !== undefined && !(text in values)) {
        input.append(h('option', { value: text }, text === '' ? 'empty' : text));
      }
      this.known = text;
      if (text !== undefined) {
        input.value = text;
      }
      this.compare();
    },
    compare() {
      const differs = this.known !== undefined && input.value !== this.known;
      element.classList.toggle('changed', differs);
      was.textContent = differs ? `now ${values?.[this.known] ?? (this.known || 'empty')}` : '';
      return differs;
    },
  };
}

function form(entry) {
  const { number, parameters, reply, done } = entry;
  const fields = parameters.map(field);
  const line = status();
  const send = h('button', { class: 'primary' }, 'Store');
  const sent = () => Object.fromEntries(fields.map(({ input }) => [input.name, input.value]));
  const keyOf = (parameter, values) =>
    (parameter.reads ?? parameter.shown)?.replace(/\{(\w+)\}/, (_, name) => values[name]);
  // Fields that choose what the reading is about; a change of theirs changes what is known.
  const choosing = fields.filter(({ parameter: { name, reading } }) => reading ||
    reply?.row?.parameter === name || reply?.of?.[name] ||
    parameters.some(({ reads }) => reads?.includes(`{${name}}`)));

  // The object that tells of these values; undefined where the unit has none.
  async function told(values) {
    const reading = parameters.filter((parameter) => parameter.reading)
      .map(({ name }) => [name, values[name]]);
    const outcome = await read(number, reading);
    if (!outcome.rows.length) {
      throw new Error(outcome.body === '[]\n' ? 'The unit has no such settings.'
        : failure(number, outcome));
    }
    if (Object.entries(reply.of ?? {}).some(([name, value]) => values[name] !== value)) {
      return undefined;
    }
    return outcome.rows.find((row) =>
      !reply.row || row[reply.row.key] === values[reply.row.parameter]);
  }

  function compare() {
    const differ = fields.filter((one) => one.compare()).length;
    const blind = fields.every(({ known }) => known === undefined);
    send.disabled = !differ && !blind;
  }

  let newest = 0; // reading, the one that counts: an earlier one may come in after it

  async function load() {
    if (!reply) {
      return compare();
    }
    const values = sent();
    const reading = ++newest;
    try {
      const row = await told(values);
      if (reading !== newest) {
        return;
      }
      for (const one of fields) {
        const key = keyOf(one.parameter, values);
        if (key) {
          one.fill(row?.[key]);
        }
      }
    } catch (error) {
      if (reading === newest) {
        line.say('bad', error.message);
      }
    }
    compare();
  }

  // What is wrong with the values before they are sent.
  function objection(values) {
    const numeric = parameters.find(({ name, form: kind }) =>
      kind === 'number' && /\D/.test(values[name]));
    if (numeric) {
      return `${numeric.label}: digits only.`;
    }
    const whole = requestText(number, 1, Object.entries(values));
    const misread = Object.keys(values).find((name) => unitReads(whole, name) !== values[name]);
    return misread && `The unit would take “${unitReads(whole, misread)}” for ${misread}: a value `
      + 'can hold neither & nor the name of another parameter.';
  }

  // Compares what was stored with what the unit reads back.
  function judge(row, values) {
    if (!row) {
      return line.say('warn', 'The unit answers that it is done; this cannot be read back.');
    }
    for (const one of fields) {
      const { reads, label, name } = one.parameter;
      const found = row[keyOf(one.parameter, values)];
      if (reads && found !== values[name]) {
        return line.say('bad',
          `The unit answers that it is done, but ${label} reads back as “${found}”.`);
      }
      if (reads) {
        one.fill(found);
      }
    }
    const unseen = parameters.filter(({ reads, name }) => reads === null && values[name])
      .map(({ label }) => label).join(', ');
    return line.say('good', `Stored: the unit reads it back${unseen && `, but for ${unseen}`}.`);
  }

  async function submit() {
    const values = sent();
    const wrong = objection(values);
    if (wrong) {
      return line.say('bad', `${wrong} Nothing was sent.`);
    }
    const outcome = await store(number, Object.entries(values));
    return outcome.bare === done ? judge(reply && await told(values), values)
      : line.say('bad', failure(number, outcome));
  }

  const again = h('button', {
    type: 'button',
    onclick: () => {
      line.say('', '');
      load();
    },
  }, 'Read again');
  const element = h('form', {
    autocomplete: 'off',
    oninput: () => {
      line.say('', '');
      compare();
    },
    onchange: ({ target }) => choosing.some(({ input }) => input === target) && load(),
    onsubmit: async (event) => {
      event.preventDefault();
      send.disabled = true;
      line.say('', 'Storing …');
      try {
        await submit();
      } catch (error) {
        line.say('bad', error.message);
      }
      compare();
    },
  }, entry.note ? h('p', { class: 'muted' }, entry.note) : null,
  h('div', { class: 'fields' }, ...fields.map((one) => one.element)),
  h('div', { class: 'actions' }, send, reply ? again : null), line.element);
  return { element, load };
}

export function open(page) {
  const chosen = Number(location.hash.split('/')[1]);
  for (const entry of kStoring) {
    const { element, load } = form(entry);
    const fold = h('details', { class: 'card wide', id: `command-${entry.number}` },
      h('summary', {}, h('h2', {}, entry.name[0].toUpperCase() + entry.name.slice(1)),
        h('code', {}, `cmd_id=${entry.number}`)), element);
    fold.addEventListener('toggle', () => fold.open && load());
    fold.open = entry.number === chosen;
    page.append(fold);
  }
  return {};
}
