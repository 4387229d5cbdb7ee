// What the unit is and how it stands: commands 2, 4, 6 and the ports of 23.
import { badge, card, facts, h, svg } from './page.js';
import { entryOf, read, valuesOf } from './unit.js';

const kIdentity = ['type', 'onu_vendor_id', 'onu_model', 'onu_id', 'onu_hw_ver', 'onu_soft_ver',
  'onu_fm_ver', 'app_ver'];
const kHardware = ['chipset_chip_model', 'chipset_vendor_id', 'chipset_rev', 'chipset_ic_ver',
  'capabi_service_supported', 'capabi_ge_num', 'capabi_fe_num', 'capabi_pots_num',
  'capabi_us_que_num', 'capabi_ds_que_num', 'capabi_battery_backup'];
const kPort = ['VlanInfo_mode', 'default_vid', 'VlanInfo_serial', 'auto_neg', 'link_rate', 'pause',
  'loop_detect', 'mc_mode', 'max_igmp_group'];

const words = (number, row, key) => valuesOf(entryOf(number, key))?.[row[key]] ?? row[key] ?? '';
const named = (number, row, keys) =>
  keys.map((key) => [entryOf(number, key).label, words(number, row, key)]);

function socket(port) {
  const on = port.phy === '1';
  return h('li', { class: on ? 'on' : '' },
    svg('svg', { viewBox: '0 0 40 32', 'aria-hidden': 'true' },
      svg('path', { d: 'M4 4h32v24h-8v-4h-4v-4h-8v4h-4v4H4z' }),
      svg('path', { d: 'M11 8v5m4-5v5m4-5v5m4-5v5m4-5v5' })),
    h('strong', {}, `Port ${port.port_id}`),
    h('span', {}, on ? `link ${words(23, port, 'link')}` : 'disabled'),
    h('span', {}, words(23, port, 'work_mode')),
    h('span', { class: 'muted' }, `up to ${words(23, port, 'mode_max')}`));
}

function draw(info, port, ip, ports) {
  const registered = info.reg_st === '1';
  return [
    h('section', { class: 'card hero' },
      h('div', {}, badge(registered ? 'good' : 'bad', words(2, info, 'reg_st')),
        h('p', { class: 'figure' }, info.type || 'ONU'),
        h('p', { class: 'muted' }, info.app_ver ?? '')),
      facts([
        ['MAC address', info.onu_mac], ['IP address', ip.ip], ['Logical link', info.llid],
        ['FEC', words(2, info, 'fec_mode')]])),
    h('section', { class: 'card wide' }, h('h2', {}, 'Ports'),
      h('ul', { class: 'sockets' }, ...ports.map(socket)),
      h('p', { class: 'muted small' }, 'The unit calls every link up, whatever it does.'),
      h('h3', {}, 'First port'), facts(named(4, port, kPort))),
    card('Identity', facts(named(2, info, kIdentity))),
    card('Network', facts([...named(6, ip, ['ip', 'netmask']),
      ...named(2, info, ['onu_mac', 'reg_st', 'llid', 'afec_ability', 'fec_mode'])])),
    card('Hardware', facts(named(2, info, kHardware))),
  ];
}

export function open(page) {
  const grid = h('div', { class: 'grid' });
  page.append(grid);
  let last = '';
  return {
    every: 5000,
    async refresh() {
      const replies = [];
      for (const number of [2, 4, 6, 23]) {
        replies.push(await read(number));
      }
      const bodies = replies.map(({ body }) => body).join();
      if (bodies !== last) {
        last = bodies;
        const [info, port, ip] = replies.map(({ rows }) => rows[0] ?? {});
        grid.replaceChildren(...draw(info, port, ip, replies[3].rows));
      }
    },
  };
}
