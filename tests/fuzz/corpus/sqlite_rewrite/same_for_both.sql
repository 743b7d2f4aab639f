select t.a , `b`, "c" from t
	where date(t.d) between ? and ?  and c like ? 