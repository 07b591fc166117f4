#!/bin/sh
# Stands in for Korvo as the korvo:// handler: appends the URL it was given to $KORVO_TEST_URL_LOG
# and, when a test asks, the allocator tunables and the GTK theme it runs with to
# $KORVO_TEST_TUNABLES_LOG and $KORVO_TEST_THEME_LOG.
printf '%s\n' "$1" >> "$KORVO_TEST_URL_LOG"
if [ -n "$KORVO_TEST_TUNABLES_LOG" ]; then
  printf '%s\n' "${GLIBC_TUNABLES-none}" >> "$KORVO_TEST_TUNABLES_LOG"
fi
if [ -n "$KORVO_TEST_THEME_LOG" ]; then
  printf '%s\n' "${GTK_THEME-none}" >> "$KORVO_TEST_THEME_LOG"
fi
