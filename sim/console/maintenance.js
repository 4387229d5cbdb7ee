// Export, import, upgrade, reboot and factory defaults (commands 10, 21, 11, 18).
import { card, confirm, h, status } from './page.js';
import { command, ping, read, sendFile, valuesOf } from './unit.js';
import { failure } from './settings.js';

const kArchive = '/xml/xml_config.tar';
const pause = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Waits until the unit answers again, which it may not have ceased to do.
async function waitForUnit(line) {
  const start = Date.now();
  let away = false;
  for (;;) {
    await pause(500);
    const answers = await ping();
    const seconds = Math.round((Date.now() - start) / 1000);
    if (answers && (away || seconds >= 5)) {
      return line.say('good', away ? `The unit is back after ${seconds} s.`
        : 'The unit is up; it has answered all the time.');
    }
    away = away || !answers;
    line.say('warn', `Waiting for the unit … ${seconds} s`);
  }
}

// A button that asks, runs the command, and follows what comes of it.
function button(text, kind, line, work) {
  const element = h('button', { type: 'button', class: kind });
  element.append(text);
  element.addEventListener('click', async () => {
    element.disabled = true;
    try {
      await work();
    } catch (error) {
      line.say('bad', `Not done: ${error.message}.`);
    }
    element.disabled = false;
  });
  return element;
}

function restarting(number, title, action, text) {
  const line = status();
  return card(title, h('p', {}, text), h('div', { class: 'actions' },
    button(action, 'danger', line, async () => {
      if (await confirm(`${action}?`, text, action)) {
        const outcome = await read(number);
        await (outcome.bare === command(number).done ? waitForUnit(line)
          : line.say('bad', failure(number, outcome)));
      }
    })), line.element);
}

// A card that uploads a file; `question` names what will happen, `then` follows the answer.
function uploading(title, text, options) {
  const { number, action, extra, accept, label, question, then } = options;
  const line = status();
  const file = h('input', { type: 'file', 'aria-label': `${title}: file`, accept });
  const bar = h('progress', { max: 1, value: 0, hidden: true, 'aria-label': 'Upload' });
  return card(title, h('p', {}, text), extra?.element ?? null, file, bar,
    h('div', { class: 'actions' }, button(label, 'primary', line, async () => {
      const chosen = file.files[0];
      if (!chosen?.size) {
        return line.say('bad', 'Choose a file that is not empty.');
      }
      if (!await confirm(`${label}?`, question(chosen), label)) {
        return undefined;
      }
      bar.hidden = false;
      const outcome = await sendFile(number, action, extra?.parameters() ?? [], chosen, (part) => {
        bar.value = part;
        line.say('', part < 1 ? `Sending … ${Math.floor(part * 100)} %`
          : 'Sent; the unit is at work.');
      });
      bar.hidden = true;
      return outcome.bare === command(number).done ? then(line)
        : line.say('bad', failure(number, outcome));
    })), line.element);
}

const size = ({ size: bytes }) => `${Math.ceil(bytes / 1024)} KiB`;

function exporting() {
  const line = status();
  return card('Export', h('p', {}, 'All settings in one archive, with the passwords in them.'),
    h('div', { class: 'actions' }, button('Export and download', 'primary', line, async () => {
      const outcome = await read(10);
      if (outcome.bare !== command(10).done) {
        return line.say('bad', failure(10, outcome));
      }
      const archive = await fetch(kArchive, { cache: 'no-store' });
      if (!archive.ok) {
        return line.say('bad', 'The unit answers that it is done, but there is no archive.');
      }
      const blob = await archive.blob();
      const link = h('a', { href: URL.createObjectURL(blob), download: 'xml_config.tar' });
      link.click();
      setTimeout(() => URL.revokeObjectURL(link.href), 10000);
      return line.say('good', `xml_config.tar, ${size(blob)}.`);
    })), line.element);
}

function upgradeType() {
  const [parameter] = command(21).parameters;
  const select = h('select', { id: 'update_type', name: parameter.name },
    ...Object.entries(valuesOf(parameter)).map(([value, text]) => h('option', { value }, text)));
  return {
    element: h('div', { class: 'field' },
      h('label', { for: 'update_type' }, parameter.label), select),
    parameters: () => [[parameter.name, select.value]],
    text: () => select.selectedOptions[0].textContent,
  };
}

export function open(page) {
  const type = upgradeType();
  page.append(h('div', { class: 'grid' },
    exporting(),
    uploading('Import', 'Takes over the settings of an archive that was exported. The unit does not '
      + 'look whether it is one.', {
      number: 10, action: 1, label: 'Import', accept: '.tar',
      question: (file) =>
        `The settings in use are replaced by those of ${file.name} (${size(file)}).`,
      then: (line) =>
        line.say('good', 'Done. Look at the settings: the unit answers the same to any file.'),
    }),
    uploading('Upgrade', 'Writes an image without looking at it. A wrong one leaves a unit that '
      + 'does not start.', {
      number: 21, action: 0, label: 'Upgrade', extra: type,
      question: (file) =>
        `${file.name} (${size(file)}) is installed as ${type.text()}, and the unit restarts.`,
      then: waitForUnit,
    }),
    restarting(11, 'Reboot', 'Reboot',
      'The unit goes down and starts again; nothing passes through it meanwhile.'),
    restarting(18, 'Factory defaults', 'Restore factory defaults', 'All settings, passwords and the '
      + 'IP address too, are replaced by those of the factory; then the unit reboots.')));
  return {};
}
