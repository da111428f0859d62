$map << END
1798416000 -0.375 NaN
1798502400 -0.375 NaN
1798416000 -0.125 NaN
1798502400 -0.125 NaN
1798416000 0.125 NaN
1798502400 0.125 NaN
1798416000 0.375 NaN
1798502400 0.375 NaN
1798416000 0.625 1.12
1798502400 0.625 2.38
1798416000 0.875 1.12
1798502400 0.875 2.38
1798416000 1.125 1.12
1798502400 1.125 2.38
1798416000 1.375 1.12
1798502400 1.375 2.38
END
set terminal pngcairo size 1000,320 background 'white'
set palette defined (0 '#00224e', 1 '#1a386f', 2 '#434e6c', 3 '#61656f', 4 '#7d7c78', 5 '#9b9476', 6 '#bcae6c', 7 '#dec958', 8 '#fee838')
set lmargin at screen 0.1810
set rmargin at screen 0.9000
set colorbox user origin 0.9100,0.1125 size 0.0200,0.5687
set cbtics font ',9'
unset key
set tics out nomirror
set xrange [1798372800:1798545600]
set multiplot title 'Nights from 2026-12-28 at the place (42.5000N 12.3000E)' noenhanced
set tmargin at screen 0.8938
set bmargin at screen 0.7188
set xtics ('' 1798416000, '' 1798502400) font ',9'
$moon << END
1798416000 68.6
1798502400 58.1
END
set yrange [0:100]
set ytics ('0' 0, '50' 50, '100' 100) font ',8'
set ylabel 'moon lit [%]' font ',9'
plot $moon using 1:2 with filledcurves y1=0 linecolor rgb '#909090' notitle, $moon using 1:2 with lines linecolor rgb '#303030' notitle
set tmargin at screen 0.6813
set bmargin at screen 0.1125
set xtics ('2026-12-28' 1798416000, '2026-12-29' 1798502400) font ',9'
set yrange [2 - 0.5:-0.5]
set ytics ('never up' 0, 'A galaxy with a name ..' 1) noenhanced font ',8'
unset ylabel
set cbrange [0:3]
set cblabel 'dark-equivalent hours' font ',10'
plot $map using 1:2:3 with image
unset multiplot
