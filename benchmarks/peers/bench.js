// What the node script and the Node-RED flow share: what one monitor does with a notification, and the counts, which
// they tell on a line of their own whenever a line comes on standard input.
"use strict";

const counts = { messages: 0, cycles: 0 };
let fires = [];

const holds = (readings) => readings.windChill.unitValue < -100 || readings.reading2.unitValue > 1000;

// Waits, judges, and nothing else.
function light() {
    const next = 0; // no wait after a fire, as the service's monitors are set up
    return (readings, now) => next <= now && holds(readings);
}

// A whole cycle: the line of the log in memory, the status, and a copy of every reading for the next time.
function full() {
    const state = { next: 0, line: "", status: "", snapshot: {} };
    return (readings, now) => {
        if (state.next > now) return false;
        const shown = [];
        for (const key in readings) shown.push(key + " = " + readings[key].unitValue);
        state.line = new Date(now).toISOString() + " Vigil evaluation dictionary: {" + shown.join(", ") + "}";
        const verdict = holds(readings);
        state.status = verdict ? "Next trigger at " + new Date(now).toISOString() : "NOT triggered yet.";
        const snapshot = {};
        for (const key in readings) snapshot[key] = { ...readings[key] };
        state.snapshot = snapshot;
        return verdict;
    };
}

function fired() {
    fires.push((performance.timeOrigin + performance.now()) / 1000);
}

process.stdin.on("data", () => {
    process.stdout.write("report " + JSON.stringify({ ...counts, fires }) + "\n");
    fires = [];
});
process.stdin.on("end", () => process.exit(0));

module.exports = { counts, fired, make: (form) => (form === "full" ? full() : light()) };
