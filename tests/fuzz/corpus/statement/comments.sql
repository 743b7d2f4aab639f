 ;; /* a */ ; set x = 1 ; -- b
 select 2 -- c
 ; # d
 ;