// The reader of replies on every kind of reply and on hostile values; the title says how it went.
import { readReply, readTrace, unitReads } from '/reply.js';

const bytes = (text) => new TextEncoder().encode(text).buffer;
const kFecKeys = ['fec_mode', 'password', 'sn'];

// name, reply, its rows (or the bare text), and where they are not usual: whether it is whole, the
// keys that are known
const kReplies = [
  ['status with a blank in front', ' 0\n', ' 0'],
  ['nothing', '', ''],
  ['no reply', 'set ip address type  error\n<HTML>{', 'set ip address type  error\n<HTML>{'],
  ['empty array', '[]\n', []],
  ['empty object', '{}\n', [{}]],
  ['object', '{a:"1",b_2:""}\n', [{ a: '1', b_2: '' }]],
  ['array of one', '[{a:"1"}]\n', [{ a: '1' }]],
  ['array of two behind a blank', '[ {a:"1",b:"2"},{a:"3",b:"4"}]\n',
    [{ a: '1', b: '2' }, { a: '3', b: '4' }]],
  ['cut off in a value', '{a:"1",b:"tr', [{ a: '1', b: 'tr' }], false],
  ['cut off behind a value', '{a:"1"', [{ a: '1"' }], false],
  ['cut off between objects', '[{a:"1"},', [{ a: '1"},' }], false],
  ['quotes, braces, backslash', '{a:"say "hi" {\\"},",b:"}"}\n',
    [{ a: 'say "hi" {\\"},', b: '}' }]],
  ['markup, control characters', '{a:"</script>\u0001\n\t&amp;"}\n',
    [{ a: '</script>\u0001\n\t&amp;' }]],
  ['key out of order', '{b:"x",a:"y",c:"z"}\n', [{ b: 'x",a:"y', c: 'z' }]],
  ['foreign key', '{fec_mode:"x",gg:"y",password:"p",sn:"s"}\n',
    [{ fec_mode: 'x",gg:"y', password: 'p', sn: 's' }], true, kFecKeys],
  ['end too early', '{fec_mode:"x"},{fec_mode:"",password:"p",sn:"s"}\n',
    [{ fec_mode: 'x"},{fec_mode:"', password: 'p', sn: 's' }], true, kFecKeys],
  ['array in the last value', '{a:"1",b:"2"},{"}\n', [{ a: '1', b: '2"},{' }]],
  ['keys that objects have', '{__proto__:"x",constructor:"y"}\n',
    [JSON.parse('{"__proto__":"x","constructor":"y"}')]],
  ['code', '{a:"${window.hurt=1}`;hurt=1//"}\n', [{ a: '${window.hurt=1}`;hurt=1//' }]],
].map(([name, reply, is, whole = true, keys = undefined]) => [name, readReply(reply, keys),
  typeof is === 'string' ? { rows: [], bare: is, whole } : { rows: is, bare: null, whole }]);

// name, what is computed, what it has to be
const kCases = [
  ...kReplies,
  ['parameter', unitReads('cmd_id=6&action=1&ip=1.2.3.4&netmask=', 'ip'), '1.2.3.4'],
  ['parameter within another', unitReads('gpon_loid=g&loid=l', 'loid'), 'g'],
  ['parameter that is missing', unitReads('a=1', 'b'), ''],
  ['trace', readTrace(bytes('status 2\n1\n\nreply 6\n℃\na \n')), { status: '1\n', reply: '℃\na ' }],
  ['trace that is cut off', readTrace(bytes('status 2\n1\n\nreply 60\nabc')), null],
  ['error page in place of a trace', readTrace(bytes('<HTML>\n')), null],
];

const failed = kCases
  .map(([name, ...both]) => [name, ...both.map((value) => JSON.stringify(value))])
  .filter(([, found, wanted]) => found !== wanted)
  .map((texts) => texts.join('\n  '));
document.querySelector('pre').textContent = failed.join('\n');
document.title = failed.length || window.hurt ? `${failed.length} failed`
  : `${kCases.length} passed`;
