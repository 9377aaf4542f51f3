$ qvejmap records orders.json | head -9
  NOVAL\t/root\t
  NOVAL\t/root/orders\t
  NUMBER\t/root/orders/id\t1001
  NOVAL\t/root/orders/customer\t
  STRING\t/root/orders/customer/name\tAda Berg
  STRING\t/root/orders/customer/city\tOslo
  NOVAL\t/root/orders/items\t
  STRING\t/root/orders/items/sku\tlamp
  NUMBER\t/root/orders/items/quantity\t2

# Kinds; control characters and backslashes as JSON escapes.
$ printf '{"e":{},"f":[],"t":[true,null,-1.50e3,"a\\tb\\\\c\\u001b\\u0085"],"n\\n":"","/":{"x":"é"}}' |
>     qvejmap records -
  NOVAL\t/root\t
  NOVAL\t/root/e\t
  FAKE_VARIABLE\t/root/e/FAKE\tVAR
  NOVAL\t/root/f\t
  FAKE_VARIABLE\t/root/f/FAKE\tVAR
  NOVAL\t/root/t\t
  BOOLEAN\t/root/t/t1\ttrue
  NULL\t/root/t/t2\tnull
  NUMBER\t/root/t/t3\t-1.50e3
  STRING\t/root/t/t4\ta\\tb\\\\c\\u001b\\u0085
  STRING\t/root/n\\n\t
  NOVAL\t/root//\t
  STRING\t/root///x\té
