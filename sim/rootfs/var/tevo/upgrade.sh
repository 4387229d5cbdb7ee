#!/bin/busybox sh
# Unpacks the archive of the writable file system that an upgrade has left in /var, and restarts the
# unit. An archive that is not whole changes nothing.
archive=/var/jffs2_fs.tar.gz

if gunzip -t "$archive" && tar -tzf "$archive" >/dev/null; then
  tar -xzf "$archive" -C /
fi
rm -f "$archive"
/bin/reboot
