# Draws the four tables that bench/run leaves in build/bench: gnuplot -e "machine='...'" bench/growth.gnuplot
set terminal svg size 1000,700 font "sans,13" background "white"
set multiplot layout 2,2 title machine
set datafile separator "\t"
set key top left
set grid
set style data linespoints

set title "Reading one setting, by lines in front of it"
set xlabel "lines of the store"
set ylabel "microseconds a call"
set logscale xy
plot "build/bench/store.tsv" using 1:2 title "server", "" using 1:3 title "bare server, same look-up"
unset logscale

set title "The table of neighbours, by networks"
set xlabel "networks in the driver's list"
set yrange [0:*]
plot "build/bench/networks.tsv" using 1:2 title "server", "" using 1:3 title "bare server, same payload"

set title "Finding a VAP by its BSSID, by VAPs looked at"
set xlabel "VAPs"
set ylabel "milliseconds a call"
plot "build/bench/vaps.tsv" using 1:2 title "server", "" using 1:3 title "as many ifconfigs"

set title "Null calls, by calls under way"
set xlabel "calls that wait"
set ylabel "thousand calls a second"
set key bottom left
set logscale x
plot "build/bench/waiting.tsv" using 1:2 title "server", "" using 1:3 title "bare server"
unset multiplot
