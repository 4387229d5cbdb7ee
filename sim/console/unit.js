// Talking to the unit: requests, uploads with progress, and whether it answers at all.
import { readReply, readTrace } from './reply.js';

const kCgi = '/cgi-bin/onu-cgi';
const kTrace = '/cgi-bin/trace';
const kFormType = 'application/x-www-form-urlencoded';

export const description = await (await fetch('/interface.json')).json();
export const command = (number) => description.commands.find((row) => row.number === number);
export const keysOf = (number) => Object.keys(command(number).reply?.keys ?? {});

// { label, unit, values } of a reply's key.
export function entryOf(number, key) {
  const { reply } = command(number);
  const entry = reply.keys[key];
  return { unit: reply.unit, ...(typeof entry === 'string' ? { label: entry } : entry) };
}
export const valuesOf = ({ values }) =>
  typeof values === 'string' ? description.values[values] : values;

const listeners = new Set();
let answering = true;
export function onAnswering(listener) {
  listeners.add(listener);
}
function setAnswering(now) {
  if (now !== answering) {
    answering = now;
    listeners.forEach((listener) => listener(now));
  }
}

// Asks the web server itself, which costs the unit no request. One that only hangs does not answer.
export async function ping() {
  try {
    await fetch('/', { method: 'HEAD', cache: 'no-store', signal: AbortSignal.timeout(2000) });
    setAnswering(true);
  } catch {
    setAnswering(false);
  }
  return answering;
}

// The outcome of a request: { status, body, message, rows, bare, whole }; status 0 means that there
// was no reply. Throws when the unit does not answer.
function outcome(number, status, message, body) {
  setAnswering(true);
  const reply = readReply(status === 200 ? body : '', keysOf(number));
  return { status, message: message.trim(), body, ...reply };
}

async function noReply(number) {
  if (await ping()) {
    return outcome(number, 0, '', '');
  }
  throw new Error('the unit does not answer');
}

async function send(number, url, options) {
  let reply;
  try {
    reply = await fetch(url, { cache: 'no-store', ...options });
  } catch {
    return noReply(number);
  }
  return outcome(number, reply.status, reply.statusText, await reply.text());
}

export const requestText = (number, action, parameters) =>
  [['cmd_id', number], ['action', action], ...parameters].map((pair) => pair.join('=')).join('&');

export const read = (number, parameters = []) =>
  send(number, `${kCgi}?${requestText(number, 0, parameters)}`);

// As a form, whose body the browser leaves as it is: a query string would be escaped.
export const store = (number, parameters) =>
  send(number, kCgi, {
    method: 'POST',
    headers: { 'Content-Type': kFormType },
    body: requestText(number, 1, parameters),
  });

function upload(url, file, progress, type = 'text') {
  return new Promise((resolve, reject) => {
    const form = new FormData();
    form.append('file', file);
    const request = new XMLHttpRequest();
    request.open('POST', url);
    request.responseType = type;
    request.upload.onprogress = (event) => progress(event.loaded / event.total);
    request.onload = () => resolve(request);
    request.onerror = reject;
    request.send(form);
  });
}

export async function sendFile(number, action, parameters, file, progress) {
  let request;
  try {
    const query = requestText(number, action, parameters);
    request = await upload(`${kCgi}?${query}`, file, progress);
  } catch {
    return noReply(number);
  }
  return outcome(number, request.status, request.statusText, request.response);
}

// Has the unit's recorder run the program for any request; { line, parts }.
export async function trace(method, query, file, progress) {
  const get = method === 'GET';
  const path = (cgi) => cgi + (method === 'form' ? '' : `?${query}`);
  const url = new URL(path(kTrace), location);
  let buffer;
  if (method === 'upload') {
    buffer = (await upload(url, file, progress, 'arraybuffer')).response;
  } else {
    const form = { method: 'POST', headers: { 'Content-Type': kFormType }, body: query };
    buffer = await (await fetch(url, { cache: 'no-store', ...(get ? {} : form) })).arrayBuffer();
  }
  const parts = readTrace(buffer);
  if (!parts) {
    throw new Error('the recorder gave no account');
  }
  const line = `${get ? 'GET' : 'POST'} ${kCgi}${method === 'form' ? '' : url.search} HTTP/1.1`;
  return { line, parts };
}
