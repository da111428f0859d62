# How cost grows with size, from growth.dat: a block for each series, its title first.
stats 'growth.dat' using 1 nooutput
set terminal pngcairo noenhanced size 900, 600 background 'white'
set output 'growth.png'
set title 'Growth of the cost with the size, each from its smallest size on'
set linetype cycle 5
set for [i = 1:5] linetype i linecolor rgb word('#1f6fb4 #c04030 #2e8b57 #e08a1e #7b4fa3', i)
set logscale xy
set format '%g'
set xlabel 'size over the smallest'
set ylabel 'time over that of the smallest'
set grid
set key top left Left reverse title 'exponents of a fit'
plot for [i = 0:STATS_blocks - 2] 'growth.dat' index i using 1:2 with linespoints linewidth 2 \
         linetype i + 1 pointtype 7 title columnheader(1), \
     x with lines dashtype 2 linecolor rgb '#808080' title 'in proportion'
