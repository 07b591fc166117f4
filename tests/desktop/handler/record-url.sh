#!/bin/sh
# Stands in for Korvo as the korvo:// handler: appends the URL it was given to $KORVO_TEST_URL_LOG.
printf '%s\n' "$1" >> "$KORVO_TEST_URL_LOG"
