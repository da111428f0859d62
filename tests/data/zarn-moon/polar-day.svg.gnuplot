$map << END
1779235200 79020 253 246 227 NaN
1779235200 79320 253 246 227 NaN
1779235200 79620 253 246 227 NaN
1779235200 79920 253 246 227 NaN
1779235200 80220 253 246 227 NaN
1779235200 80520 236 239 246 NaN
1779235200 80820 236 239 246 NaN
1779235200 81120 236 239 246 NaN
1779235200 81420 236 239 246 NaN
1779235200 81720 236 239 246 NaN
1779235200 82020 236 239 246 NaN
1779235200 82320 253 246 227 NaN
1779235200 82620 253 246 227 NaN
1779235200 82920 253 246 227 NaN
1779235200 83220 253 246 227 NaN
1779235200 83520 253 246 227 NaN
1779235200 83820 253 246 227 NaN
1779321600 79020 253 246 227 NaN
1779321600 79320 253 246 227 NaN
1779321600 79620 253 246 227 NaN
1779321600 79920 253 246 227 NaN
1779321600 80220 253 246 227 NaN
1779321600 80520 253 246 227 NaN
1779321600 80820 253 246 227 NaN
1779321600 81120 253 246 227 NaN
1779321600 81420 253 246 227 NaN
1779321600 81720 253 246 227 NaN
1779321600 82020 253 246 227 NaN
1779321600 82320 253 246 227 NaN
1779321600 82620 253 246 227 NaN
1779321600 82920 253 246 227 NaN
1779321600 83220 253 246 227 NaN
1779321600 83520 253 246 227 NaN
1779321600 83820 253 246 227 NaN
END
$edges << END
END
$moonrise << END


1779321600 109042
END
$moonset << END


1779321600 92816
END
set terminal svg size 1000,640 background 'white'
set palette defined (0 '#00224e', 1 '#1a386f', 2 '#434e6c', 3 '#61656f', 4 '#7d7c78', 5 '#9b9476', 6 '#bcae6c', 7 '#dec958', 8 '#fee838')
set lmargin at screen 0.0800
set rmargin at screen 0.9000
set colorbox user origin 0.9100,0.0938 size 0.0200,0.7469
set cbtics font ',9'
unset key
set tics out nomirror
set xrange [1779192000:1779364800]
set multiplot title 'Nights from 2026-05-20 at the place (69.0000N 20.0000E)' noenhanced
set tmargin at screen 0.9469
set bmargin at screen 0.8594
set xtics ('' 1779235200, '' 1779321600) font ',9'
$moon << END
1779235200 23.2
1779321600 33.6
END
set yrange [0:100]
set ytics ('0' 0, '50' 50, '100' 100) font ',8'
set ylabel 'moon lit [%]' font ',9'
plot $moon using 1:2 with filledcurves y1=0 linecolor rgb '#909090' notitle, $moon using 1:2 with lines linecolor rgb '#303030' notitle
set tmargin at screen 0.8406
set bmargin at screen 0.0938
set xtics ('2026-05-20' 1779235200, '2026-05-21' 1779321600) font ',9'
set yrange [78720:84000]
set ytics ('22:00' 79200) font ',9'
set ylabel 'UT'
set label 'sunset' at graph 0, first 80518 left offset 0.4,0.3 font ',7' front
set label 'sunrise' at graph 0, first 82223 left offset 0.4,0.3 font ',7' front
set cbrange [0:1]
set cblabel 'worth of an hour: 1 is dark, at the zenith' font ',10'
set key at screen 0.5, screen 0.025 center center horizontal samplen 5 font ',9'
plot $map using 1:2:3:4:5 with rgbimage notitle, $moonrise using 1:2 with lines linewidth 3 linecolor rgb 'white' notitle, $moonrise using 1:2 with lines linewidth 1.5 linecolor rgb 'black' dashtype 1 title 'moonrise', $moonset using 1:2 with lines linewidth 3 linecolor rgb 'white' notitle, $moonset using 1:2 with lines linewidth 1.5 linecolor rgb 'black' dashtype 2 title 'moonset'
unset multiplot
