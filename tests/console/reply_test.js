// The reader of replies on every kind of reply and on hostile values; the title says how it went.
import { readReply, readTrace, unitReads } from '/reply.js';

const bytes = (text) => new TextEncoder().encode(text).buffer;
const kFecKeys = ['fec_mode', 'password', 'sn'];

// name, what is computed, what it has to be
const kCases = [
  ['status', readReply('0\n'), { rows: [], bare: '0', whole: true }],
  ['status with a blank in front', readReply(' 0\n'), { rows: [], bare: ' 0', whole: true }],
  ['status with blanks behind', readReply('1  \n'), { rows: [], bare: '1  ', whole: true }],
  ['bare word', readReply('error\n'), { rows: [], bare: 'error', whole: true }],
  ['nothing', readReply(''), { rows: [], bare: '', whole: true }],
  ['text that is no reply', readReply('set ip address type  error\n<HTML>{'),
    { rows: [], bare: 'set ip address type  error\n<HTML>{', whole: true }],
  ['empty array', readReply('[]\n'), { rows: [], bare: null, whole: true }],
  ['empty object', readReply('{}\n'), { rows: [{}], bare: null, whole: true }],
  ['object', readReply('{a:"1",b_2:""}\n'),
    { rows: [{ a: '1', b_2: '' }], bare: null, whole: true }],
  ['array of one', readReply('[{a:"1"}]\n'), { rows: [{ a: '1' }], bare: null, whole: true }],
  ['array of two behind a blank', readReply('[ {a:"1",b:"2"},{a:"3",b:"4"}]\n'),
    { rows: [{ a: '1', b: '2' }, { a: '3', b: '4' }], bare: null, whole: true }],
  ['cut off in a value', readReply('{a:"1",b:"tr'),
    { rows: [{ a: '1', b: 'tr' }], bare: null, whole: false }],
  ['cut off behind a value', readReply('{a:"1"'),
    { rows: [{ a: '1"' }], bare: null, whole: false }],
  ['cut off between objects', readReply('[{a:"1"},'),
    { rows: [{ a: '1"},' }], bare: null, whole: false }],

  ['quotes, braces, backslash', readReply('{a:"say "hi" {\\"},",b:"}"}\n'),
    { rows: [{ a: 'say "hi" {\\"},', b: '}' }], bare: null, whole: true }],
  ['markup and control characters', readReply('{a:"</script><b>\u0001\n\t&amp;"}\n'),
    { rows: [{ a: '</script><b>\u0001\n\t&amp;' }], bare: null, whole: true }],
  ['a key out of order belongs to the value', readReply('{b:"x",a:"y",c:"z"}\n'),
    { rows: [{ b: 'x",a:"y', c: 'z' }], bare: null, whole: true }],
  ['a foreign key belongs to the value',
    readReply('{fec_mode:"x",gg:"y",password:"p",sn:"s"}\n', kFecKeys),
    { rows: [{ fec_mode: 'x",gg:"y', password: 'p', sn: 's' }], bare: null, whole: true }],
  ['an end too early belongs to the value',
    readReply('{fec_mode:"x"},{fec_mode:"",password:"p",sn:"s"}\n', kFecKeys),
    { rows: [{ fec_mode: 'x"},{fec_mode:"', password: 'p', sn: 's' }], bare: null, whole: true }],
  ['an array in the last value', readReply('{a:"1",b:"2"},{"}\n'),
    { rows: [{ a: '1', b: '2"},{' }], bare: null, whole: true }],
  ['a key that objects have', readReply('{__proto__:"x",constructor:"y"}\n'),
    { rows: [JSON.parse('{"__proto__":"x","constructor":"y"}')], bare: null, whole: true }],
  ['code', readReply('{a:"${window.hurt=1}`;window.hurt=1//"}\n').rows[0].a,
    '${window.hurt=1}`;window.hurt=1//'],

  ['parameter', unitReads('cmd_id=6&action=1&ip=1.2.3.4&netmask=', 'ip'), '1.2.3.4'],
  ['parameter within another', unitReads('gpon_loid=g&loid=l', 'loid'), 'g'],
  ['parameter that is missing', unitReads('a=1', 'b'), ''],
  ['parameter with an ampersand', unitReads('a=1&2&b=3', 'a'), '1'],

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
