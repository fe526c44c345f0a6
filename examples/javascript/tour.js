// miraclient from Node.js: lists the BIOS attributes, changes one, is refused another change, and makes
// a firmware call of its own. What it expects is the simulated machine "locked": give it the
// simulator's library, and let it run with MIRA_SIM=locked.
//
//   npm install koffi
//   node tour.js LIBRARY

'use strict';

const {Machine, MiraError, status} = require('./miraclient.js');

let mistakes = 0;

function expect(what, isSo) {
  console.log(`${what}: ${isSo ? 'as expected' : 'NOT as expected'}`);
  if (!isSo) ++mistakes;
}

function statusOf(work) {
  try {
    work();
    return status.DONE;
  } catch (error) {
    if (!(error instanceof MiraError)) throw error;
    return error.status;
  }
}

const machine = new Machine(process.argv[2]);
const secrets = {password: Buffer.from('setup1')};
const change = (value, options) => machine.request('attr.set', {name: 'FanFloor', value}, options);

const {attributes} = machine.request('attr.list');
expect('the list of attributes', attributes.some(({name}) => name === 'FanFloor'));
expect('a request that is cancelled',
       statusOf(() => machine.request('attr.list', {}, {progress: () => false})) === status.CANCELLED);
expect('a change without the password', statusOf(() => change(30)) === status.PASSWORD);
expect('a change with it', change(30, {secrets}).changed);
expect('a change beyond the limits', statusOf(() => change(3000, {secrets})) === status.INVALID_VALUE);
const record = {cls: 0, select: 0, arg: [0x78]};  // read a setting by its location
machine.call(record);
expect('a firmware call', record.completion === 0 && record.result[0] === 2);
machine.close();
secrets.password.fill(0);
process.exit(mistakes);
