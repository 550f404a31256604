# Read by the scripts beside it: where what is made once for the Windows build is kept, and where
# wine and its own files are.
: "${SVP_WINDOWS_CACHE:=${XDG_CACHE_HOME:-$HOME/.cache}/svp-editor-windows}"
: "${SVP_WINE:=${here%/tools/windows}/build/windows/wine}"
export SVP_WINDOWS_CACHE

# The folder for temporary files is one of the things by which wine's server is found.
wine_server() { TMPDIR=$SVP_WINE/tmp WINEPREFIX=$SVP_WINE/prefix timeout "$1" /usr/lib/wine/wineserver64 "$2"; }
# Waits until wine's services are down. Those that stay up are ended, with all Windows programs.
wine_down() { wine_server 30 -w || { wine_server 30 -k || true; wine_server 30 -w; }; }
