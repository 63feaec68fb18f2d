# The lines between .EX and .EE of a manual page, without the page's escapes.
/^[.]EX/,/^[.]EE/{
  /^[.]E[XE]/d
  s/\\e/\\/g
  s/\\-/-/g
  p
}
