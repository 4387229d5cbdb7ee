// Reading what onu-cgi sends. Replies look like JSON and are not: keys stand without quotes, in
// byte order, and values are not escaped, so a value may hold quotes, braces and whole replies. A
// value therefore ends at the first quote behind which the reply can go on as it must.

const kKey = /([A-Za-z_]\w*):"/y;
const kEndAlone = /"(?:,([A-Za-z_]\w*):"|\}$)/g;
const kEndInArray = /"(?:,([A-Za-z_]\w*):"|\}(?=\s*\]$|,\s*\{))/g;

// The object whose first key is at `at`; the end is -1 when the text breaks off.
function readObject(text, at, keys, valueEnd) {
  const row = Object.create(null);
  for (let count = 0; ; ++count) {
    kKey.lastIndex = at;
    const key = kKey.exec(text)?.[1];
    if (key === undefined) {
      return { row, end: text[at] === '}' && count === 0 ? at + 1 : -1 };
    }
    const start = kKey.lastIndex;
    const follows = (next) =>
      keys ? next === keys[keys.indexOf(key) + 1] : next === undefined || next > key;
    let end;
    valueEnd.lastIndex = start;
    while ((end = valueEnd.exec(text)) && !follows(end[1])) {
      valueEnd.lastIndex = end.index + 1;
    }
    if (!end) {
      row[key] = text.slice(start);
      return { row, end: -1 };
    }
    row[key] = text.slice(start, end.index);
    if (end[1] === undefined) {
      return { row, end: valueEnd.lastIndex };
    }
    at = end.index + 2;
  }
}

// A body as { rows, bare, whole }: the objects of an object or array, or the bare text (' 0',
// 'error'). `keys`, all keys of the reply in order, make the reading exact.
export function readReply(body, keys) {
  const text = body.endsWith('\n') ? body.slice(0, -1) : body;
  const open = /^(\[\s*)?\{/.exec(text);
  if (!open) {
    const empty = /^\[\s*\]$/.test(text);
    return { rows: [], bare: empty ? null : text, whole: true };
  }
  const rows = [];
  let at = open[0].length;
  for (;;) {
    const { row, end } = readObject(text, at, keys, open[1] ? kEndInArray : kEndAlone);
    rows.push(row);
    const next = end < 0 ? null : /^,\s*\{/.exec(text.slice(end));
    if (!next) {
      const rest = end < 0 ? null : text.slice(end).trim();
      return { rows, bare: null, whole: rest === (open[1] ? ']' : '') };
    }
    at = end + next[0].length;
  }
}

// What onu-cgi finds for a parameter: behind the first occurrence of its name anywhere, up to '&'.
export function unitReads(text, name) {
  const at = text.indexOf(name);
  return at < 0 ? '' : text.slice(at + name.length + 1).split('&', 1)[0];
}

// The parts of what cgi-bin/trace sends, texts by name; null when it is not that.
export function readTrace(buffer) {
  const bytes = new Uint8Array(buffer);
  const parts = {};
  for (let at = 0; at < bytes.length;) {
    const line = bytes.indexOf(10, at);
    const head = /^(\w+) (\d+)$/.exec(new TextDecoder().decode(bytes.subarray(at, line)));
    if (line < 0 || !head || line + 1 + Number(head[2]) >= bytes.length) {
      return null;
    }
    at = line + 1 + Number(head[2]);
    parts[head[1]] = new TextDecoder().decode(bytes.subarray(line + 1, at));
    at += 1;
  }
  return 'reply' in parts ? parts : null;
}
