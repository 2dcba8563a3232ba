# gnuplot -c growth.gnuplot RESULTS.csv PLOT.svg: how the costs of calls grow, from what bench/run writes with
# --benchmark_out_format=csv. Columns: 3 the plugin's nanoseconds, 13 N, 15 the twin's nanoseconds.
set encoding utf8
set terminal svg size 860,760 font "sans-serif,13" background "white"
set output ARG2
set datafile separator comma
set logscale xy
set xrange [10:10000]
set mxtics 1
set mytics 1
set format x "%'.0f"
set format y "%.0s %cs"
set grid
set key outside right top Left reverse width 2
set style data linespoints
set linetype 5 linecolor rgb "#bc4c00"  # the default is yellow
rows(name) = sprintf("< grep '^\"%s' '%s'", name, ARG1)

set multiplot layout 2,1
set title "A call about the last display, scripted desktop"
set xlabel "displays"
plot for [method in "GetIndex GetRect GetScale DisplayIDForWindow"] \
  rows(method."/[0-9]* scripted displays/the same framework calls") using 13:($3 * 1e-9) title method, \
  rows("GetName/[0-9]* scripted displays/UUID, its text, look-up, host") using 13:($3 * 1e-9) title "GetName"

set title "Profiles"
set xlabel "profile files; of GetProfilePath, devices in colord"
plot for [method in "'first listing' 'listing again'"] \
  rows(method."/[0-9]* files/a loop of lcms2") using 13:($3 * 1e-9) title method, \
  rows("first listing/[0-9]* files/a loop of lcms2") using 13:($15 * 1e-9) dashtype 2 title "twin: a loop of lcms2", \
  rows("ListProfilesForDisplay/") using 13:($3 * 1e-9) title "ListProfilesForDisplay", \
  rows("GetProfilePath/[0-9]* devices in colord/libcolord: list") using 13:($3 * 1e-9) title "GetProfilePath"
unset multiplot
