#!/bin/busybox sh
# Leaves all settings in /xml/xml_config.tar of the web server, in the form that the import takes: a
# folder xml_config with the main settings and the other files. What it prints would be seen by
# nobody; it ends with a complete archive or with the one that was there.
www=/var/tevo/website/www/xml
folder=/tmp/export.$$/xml_config

# Restoring the factory's files leaves their main settings in /etc/xml_params: those in use go last.
mkdir -p "$folder" &&
  cp /etc/xml_params/*.xml "$folder/" &&
  cp "$www/tevo_xml_cfg_file.xml" "$folder/" &&
  tar -cf "$www/xml_config.tar.$$" -C "${folder%/*}" xml_config &&
  mv "$www/xml_config.tar.$$" "$www/xml_config.tar"
rm -rf "${folder%/*}" "$www/xml_config.tar.$$"
