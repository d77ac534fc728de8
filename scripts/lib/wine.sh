# Wine for tests. To be sourced.

# start_wine PREFIX: makes the prefix where it is missing, and keeps it awake until stop_wine. Wine starts its own
# helpers (services, the desktop) with the first program that wants them, and they keep that program's standard output
# open: whoever waits for the end of a piped output, as ctest does, would wait for them. So they are started here, and a
# shell that waits for input keeps them from ending between two programs.
start_wine() {
  export WINEPREFIX=$1 WINEDEBUG=-all
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    mkdir -p "$(dirname "$WINEPREFIX")"
    wineboot -i >/dev/null 2>&1 </dev/null
    # Windows and their messages work without a display, and a message box waits for somebody to close it.
    wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1 </dev/null
    wineserver -w
  fi
  wineserver -p
  tail --pid=$$ -f /dev/null | wine cmd >/dev/null 2>&1 &
  wine explorer /desktop >/dev/null 2>&1 </dev/null &
  # Both are up when a program has come and gone.
  wine cmd /c exit >/dev/null 2>&1 </dev/null
}

# Ends every program in the prefix.
stop_wine() {
  wineserver -k || true
}
