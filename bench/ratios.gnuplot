# The ratios and their aims, from ratios.dat: row, place, median, quartiles, aim.
stats 'ratios.dat' using 2 nooutput
rows = STATS_records
set terminal pngcairo noenhanced size 900, 100 + 20 * rows background 'white'
set output 'ratios.png'
set title 'Library over peer, processor time: left of 1 is faster'
set logscale x
set xlabel 'ratio: median and quartiles'
set format x '%g'
set yrange [rows - 0.5:-0.5]
set grid x y linetype 1 linecolor rgb '#d8d8d8'
set key outside bottom center horizontal
set arrow from 1, graph 0 to 1, graph 1 nohead linecolor rgb '#808080' linewidth 2
set bars small
plot 'ratios.dat' using 3:2:4:5:ytic(1) with xerrorbars pointtype 7 linewidth 2 \
         linecolor rgb '#1f6fb4' title 'measured', \
     '' using 6:2 with points pointtype 2 pointsize 1.2 linewidth 2 linecolor rgb '#c04030' \
         title 'aim, at most'
