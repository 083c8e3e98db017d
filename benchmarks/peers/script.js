// The plain script: one client, a table of stations, a list of monitors each.
//
//     node script.js PORT STATIONS MONITORS light|full
"use strict";

const mqtt = require("mqtt");
const bench = require("./bench.js");

const [port, stations, monitors, form] = process.argv.slice(2);
const byTopic = new Map();
for (let station = 0; station < Number(stations); ++station) byTopic.set("load/s" + station, []);
for (let monitor = 0; monitor < Number(monitors); ++monitor)
    byTopic.get("load/s" + (monitor % Number(stations))).push(bench.make(form));

const client = mqtt.connect("mqtt://127.0.0.1:" + port);
client.on("connect", () => client.subscribe("load/+"));
client.on("message", (topic, payload) => {
    const readings = JSON.parse(payload).readings;
    const now = Date.now();
    bench.counts.messages += 1;
    for (const monitor of byTopic.get(topic)) {
        bench.counts.cycles += 1;
        if (monitor(readings, now)) bench.fired();
    }
});
