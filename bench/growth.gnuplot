# How cost grows with size, from growth.dat: a block for each series, its title first.
set terminal pngcairo size 900, 600 background 'white'
set output 'growth.png'
set title 'Growth of the cost with the size, each from its smallest size on'
set logscale xy
set xlabel 'size, relative'
set ylabel 'time, relative'
set grid
set key top left title 'exponent of a fit'
stats 'growth.dat' using 0 nooutput
plot for [i = 0:STATS_blocks - 1] 'growth.dat' index i using 1:2 with linespoints linewidth 2 \
         pointtype 7 title columnheader(1), \
     [1:1000] x with lines dashtype 2 linecolor rgb '#808080' title 'in proportion'
