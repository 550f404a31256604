# Read by the scripts beside it: where what is made once for the Windows build is kept.
: "${SVP_WINDOWS_CACHE:=${XDG_CACHE_HOME:-$HOME/.cache}/svp-editor-windows}"
export SVP_WINDOWS_CACHE
