// Node-RED without its editor; its functions reach the counts as `bench`.
"use strict";

module.exports = {
    uiPort: 0,
    uiHost: "127.0.0.1",
    httpAdminRoot: false,
    httpNodeRoot: false,
    credentialSecret: false,
    telemetry: { enabled: false, updateNotification: false },
    externalModules: { palette: { allowInstall: false }, modules: { allowInstall: false } },
    logging: { console: { level: "error", metrics: false, audit: false } },
    functionGlobalContext: { bench: require(process.env.VIGIL_BENCH_JS) },
};
