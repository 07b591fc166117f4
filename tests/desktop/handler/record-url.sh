#!/bin/sh
# Stands in for Korvo as the korvo:// handler: appends the URL it was given to $KORVO_TEST_URL_LOG
# and, when a test asks, the allocator tunables it runs with to $KORVO_TEST_TUNABLES_LOG.
printf '%s\n' "$1" >> "$KORVO_TEST_URL_LOG"
if [ -n "$KORVO_TEST_TUNABLES_LOG" ]; then
  printf '%s\n' "${GLIBC_TUNABLES-none}" >> "$KORVO_TEST_TUNABLES_LOG"
fi
