#!/bin/sh
# Writes COUNT notifications (100) of an invented station as JSON lines, five minutes apart.
# A reading is left out now and then, as real stations do.
awk -v count="${1:-100}" 'BEGIN {
    for (i = 0; i < count; ++i) {
        gust = 30 + 22 * sin(i / 9) + 6 * sin(i * 1.7)
        minutes = i * 5
        day = 1 + int(minutes / 1440)
        if (day > 28) exit
        printf "{\"time\":\"2026-02-%02dT%02d:%02d:00Z\",\"readings\":{", day, int(minutes / 60) % 24, minutes % 60
        if (i % 13 != 12) printf "\"windGust\":%.1f,", gust
        printf "\"sky\":\"%s\",\"battery\":{\"value\":%.2f,\"unit\":\"V\"}}}\n", (gust > 45 ? "Storm" : "Fair"), 3.3 - i / 2000
    }
}'
